#include "taskdsl/task/when_references.h"

#include "support/match.h"
#include "support/text.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <utility>
#include <vector>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view openBraces = "{{";
constexpr std::string_view completedWord = "completed";

/// The two forms in which a condition names a task: `{{ <task>.<property> }}` and `completed <task>`.
enum class ReferenceForm { braces, completed };
constexpr std::array referenceForms{ReferenceForm::braces, ReferenceForm::completed};

/// One place where a task may be named: the name begins somewhere from `first` to `last`, with white space
/// between the two. Inside braces a `.` has to follow it, after "completed" white space or the end.
struct ReferenceSite {
    std::size_t begin = 0; ///< where the pattern begins
    std::size_t first = 0;
    std::size_t last = 0;
    ReferenceForm form = ReferenceForm::braces;
};

/// The next site whose pattern begins at `from` or later. The character before "completed" belongs
/// to the pattern.
std::optional<ReferenceSite> nextBraces(std::string_view text, std::size_t from) noexcept {
    const auto at = text.find(openBraces, from);
    if (at == std::string_view::npos) {
        return std::nullopt;
    }
    const auto first = at + openBraces.size();
    return ReferenceSite{at, first, skipSpace(text, first), ReferenceForm::braces};
}

std::optional<ReferenceSite> nextCompleted(std::string_view text, std::size_t from) noexcept {
    for (auto at = text.find(completedWord, from); at != std::string_view::npos;
         at = text.find(completedWord, at + 1)) {
        const auto end = at + completedWord.size();
        const bool begins = at == 0 || (at > from && isSpace(text[at - 1]));
        if (begins && end < text.size() && isSpace(text[end])) {
            return ReferenceSite{at, end + 1, skipSpace(text, end), ReferenceForm::completed};
        }
    }
    return std::nullopt;
}

std::optional<ReferenceSite> nextSite(std::string_view text, std::size_t from, ReferenceForm form) noexcept {
    return form == ReferenceForm::braces ? nextBraces(text, from) : nextCompleted(text, from);
}

/// Where the pattern ends whose name ends at `nameEnd`; npos when the text after the name does not fit.
std::size_t matchAfterName(std::string_view text, std::size_t nameEnd, ReferenceForm form) noexcept {
    if (form == ReferenceForm::completed) {
        return nameEnd == text.size() || isSpace(text[nameEnd]) ? nameEnd : std::string_view::npos;
    }
    const auto dot = skipSpace(text, nameEnd);
    return dot < text.size() && text[dot] == '.' ? dot + 1 : std::string_view::npos;
}

/// Replaces one name at all sites of one pattern:
/// `\{\{\s*<old>\s*\.` by `{{ <new>.`, or `((^|\s)completed\s+)<old>(?=\s|$)` by `$1<new>`.
std::string renameOne(std::string_view text, std::string_view oldName, std::string_view newName,
                      ReferenceForm form) {
    std::string result;
    std::size_t from = 0;
    std::size_t copied = 0;
    while (const auto site = nextSite(text, from, form)) {
        from = site->begin + 1;
        for (auto at = site->last + 1; at-- > site->first;) {
            if (!text.substr(at).starts_with(oldName)) {
                continue;
            }
            const auto end = matchAfterName(text, at + oldName.size(), form);
            if (end == std::string_view::npos) {
                continue;
            }
            if (form == ReferenceForm::braces) {
                result.append(text, copied, site->begin - copied).append("{{ ").append(newName) += '.';
            } else {
                result.append(text, copied, at - copied).append(newName);
            }
            copied = end;
            from = end;
            break;
        }
    }
    return result.append(text.substr(copied));
}

using Rename = ValueMap::const_iterator;

/// Calls `found(rename, nameBegin)` for every key with which the text begins at `at`, longest first. Each
/// look-up shortens the text to what it has in common with the nearest key, so that no look-up is repeated.
template <class Found>
void forEachKeyAt(std::string_view text, std::size_t at, const ValueMap& renames, const Found& found) {
    auto rest = text.substr(at);
    for (;;) {
        auto next = renames.upper_bound(rest);
        if (next == renames.begin()) {
            return;
        }
        const std::string& key = (--next)->first;
        const auto common = static_cast<std::size_t>(
            std::mismatch(key.begin(), key.end(), rest.begin(), rest.end()).first - key.begin());
        if (common == key.size()) {
            found(next);
            if (key.empty()) {
                return;
            }
            rest = rest.substr(0, common - 1);
        } else {
            rest = rest.substr(0, common);
        }
    }
}

/// A rename that fits at a site.
struct ReferenceMatch {
    ReferenceSite site;
    std::size_t begin = 0; ///< of the name
    std::size_t end = 0;   ///< of the pattern
    Rename rename;
};

/// Calls `found` for every rename that changes something at the site.
template <class Found>
void forEachMatchAt(std::string_view text, const ReferenceSite& site, const ValueMap& renames,
                    const Found& found) {
    for (auto at = site.first; at <= site.last; ++at) {
        forEachKeyAt(text, at, renames, [&](Rename rename) {
            const auto end = matchAfterName(text, at + rename->first.size(), site.form);
            if (end != std::string_view::npos && rename->first != rename->second) {
                found(ReferenceMatch{site, at, end, rename});
            }
        });
    }
}

/// The same for every site of the text.
template <class Found>
void forEachMatch(std::string_view text, const ValueMap& renames, const Found& found) {
    for (const auto form : referenceForms) {
        for (auto site = nextSite(text, 0, form); site; site = nextSite(text, site->begin + 1, form)) {
            forEachMatchAt(text, *site, renames, found);
        }
    }
}

/// A name of one word that cannot make or break a site by itself.
bool isPlainName(std::string_view name) noexcept {
    return !name.empty() && name != completedWord &&
           std::none_of(name.begin(), name.end(), [](char c) { return isSpace(c) || c == '{'; });
}

/// True when some rename could apply to what another one has put in: its key is the new name, or one of the
/// two is the part of the other before a dot.
bool isRenamedAgain(const std::string& name, const ValueMap& renames) {
    for (auto dot = name.find('.'); dot != std::string::npos; dot = name.find('.', dot + 1)) {
        if (renames.contains(std::string_view(name).substr(0, dot))) {
            return true;
        }
    }
    const auto longer = renames.lower_bound(name + ".");
    return renames.contains(name) || (longer != renames.end() && longer->first.starts_with(name + "."));
}

/// Many references in one text are renamed in one pass when no rename can reach the place or the result of
/// another. Nothing when that is not sure.
std::optional<std::string> renameAllAtOnce(std::string_view text, std::vector<ReferenceMatch> matches,
                                           const ValueMap& renames) {
    const bool plain = std::all_of(renames.begin(), renames.end(), [](const auto& rename) {
        return isPlainName(rename.first) && isPlainName(rename.second);
    });
    if (!plain) {
        return std::nullopt;
    }
    std::sort(matches.begin(), matches.end(),
              [](const auto& a, const auto& b) { return a.site.begin < b.site.begin; });
    std::string result;
    std::size_t copied = 0;
    for (const auto& match : matches) {
        const auto begin = match.site.form == ReferenceForm::braces ? match.site.begin : match.begin;
        if (begin < copied || isRenamedAgain(match.rename->second, renames)) {
            return std::nullopt;
        }
        result.append(text, copied, begin - copied);
        if (match.site.form == ReferenceForm::braces) {
            result.append("{{ ").append(match.rename->second) += '.';
        } else {
            result.append(match.rename->second);
        }
        copied = match.end;
    }
    return result.append(text.substr(copied));
}

/// From this many references on, one pass over all names pays for itself.
constexpr std::size_t manyReferences = 64;

} // namespace

std::string rewriteWhenReferences(std::string_view text, const ValueMap& renames) {
    std::vector<ReferenceMatch> matches;
    forEachMatch(text, renames, [&](const ReferenceMatch& match) { matches.push_back(match); });
    if (matches.size() >= manyReferences) {
        if (auto renamed = renameAllAtOnce(text, matches, renames)) {
            return std::move(*renamed);
        }
    }
    // Pair by pair, but only those that have something to change; each may bring in what a later one renames.
    std::string result(text);
    std::optional<Rename> last;
    for (;;) {
        std::optional<Rename> next;
        forEachMatch(result, renames, [&](const ReferenceMatch& match) {
            const auto& key = match.rename->first;
            if ((!last || (*last)->first < key) && (!next || key < (*next)->first)) {
                next = match.rename;
            }
        });
        if (!next) {
            return result;
        }
        for (const auto form : referenceForms) {
            result = renameOne(result, (*next)->first, (*next)->second, form);
        }
        last = next;
    }
}

} // namespace morquill::taskdsl
