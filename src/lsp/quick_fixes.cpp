#include "lsp/quick_fixes.h"

#include "lsp/help_table.h"
#include "lsp/issue_places.h"
#include "support/text.h"
#include "taskdsl/task/legacy_keywords.h"
#include "taskdsl/task/resolved_task.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <map>
#include <numeric>
#include <optional>
#include <span>
#include <utility>

namespace morquill::lsp {

namespace {

struct TextEdit {
    ByteRange range;
    std::string text;
};

struct Fix {
    std::string title;
    std::vector<TextEdit> edits; ///< in ascending order
};

/// An issue that is to be mended.
struct Broken {
    Session& session;
    const OpenText& text;
    const SourceFile& file;
    const lint::LintIssue& issue;
    ByteRange range; ///< of the line, or of the name that is wrong

    [[nodiscard]] std::string_view source() const noexcept { return file.text(); }
    /// The text between the `number`th pair of single quotes of the message.
    [[nodiscard]] std::string quoted(std::size_t number) const {
        const auto parts = splitOn(issue.message, '\'');
        return 2 * number + 1 < parts.size() ? parts[2 * number + 1] : std::string();
    }
    /// The bytes of the whole line, with its end.
    [[nodiscard]] ByteRange wholeLine() const noexcept {
        const auto number = text.buffer.lineOf(range.begin);
        const auto end =
            number + 1 < text.buffer.lineCount() ? text.buffer.line(number + 1).begin : source().size();
        return {text.buffer.line(number).begin, end};
    }
    [[nodiscard]] std::string_view indent() const noexcept {
        const auto line = wholeLine();
        return source().substr(line.begin, source().find_first_not_of(" \t", line.begin) - line.begin);
    }
    [[nodiscard]] std::span<const Occurrence> occurrencesInLine() const noexcept {
        const auto& all = file.index.occurrences;
        const auto line = wholeLine();
        const auto startsBefore = [](const Occurrence& o, std::size_t offset) { return o.begin < offset; };
        const auto first = std::lower_bound(all.begin(), all.end(), line.begin, startsBefore);
        return {first, std::lower_bound(first, all.end(), line.end, startsBefore)};
    }
    /// The first occurrence of a kind in the line.
    [[nodiscard]] const Occurrence* inLine(NameKind kind, std::string_view name = {}) const noexcept {
        for (const auto& o : occurrencesInLine()) {
            if (o.kind == kind && (name.empty() || file.name(o) == name)) {
                return &o;
            }
        }
        return nullptr;
    }
    /// True when the task around the issue has that directive.
    [[nodiscard]] bool taskHas(std::string_view directive) const noexcept {
        const auto task = enclosing(file.index, blockAt(file.index, range.begin), BlockKind::task);
        if (task == noIndex) {
            return false;
        }
        const auto& blocks = file.index.blocks;
        for (auto i = task + 1; i < blocks.size() && blocks[i].begin < blocks[task].end; ++i) {
            if (blocks[i].kind == BlockKind::directive && blocks[i].parent == task &&
                file.blockName(i) == directive) {
                return true;
            }
        }
        return false;
    }
    /// The place behind the line, with the line end that is missing there.
    [[nodiscard]] TextEdit behindLine(std::string lines) const {
        const auto end = wholeLine().end;
        const bool open = end == source().size() && !source().ends_with('\n');
        return {{end, end}, (open ? "\n" : "") + std::move(lines)};
    }
};

using Mend = std::optional<Fix> (*)(const Broken&);

std::optional<Fix> replaceRange(ByteRange range, const std::string& text) {
    return Fix{"Replace with '" + text + "'", {{range, text}}};
}

std::optional<Fix> includeSign(const Broken& broken) {
    return replaceRange({broken.range.begin, broken.range.begin + std::string_view("#INCLUDE").size()},
                        "&INCLUDE");
}

/// "... '<older>' is legacy; use '<modern>'"
std::optional<Fix> quotedAlias(const Broken& broken) {
    return replaceRange(broken.range, broken.quoted(1));
}

/// "%control <older> is legacy; use <modern>"
std::optional<Fix> controlAlias(const Broken& broken) {
    const auto& message = broken.issue.message;
    return replaceRange(broken.range, message.substr(message.rfind(' ') + 1));
}

std::optional<Fix> sourceGuess(const Broken& broken) {
    const Occurrence* guess = broken.inLine(NameKind::word, "guess");
    guess = guess == nullptr ? broken.inLine(NameKind::word, "gues") : guess;
    if (guess == nullptr) {
        return std::nullopt;
    }
    auto begin = guess->begin;
    while (begin > 0 && isSpace(broken.source()[begin - 1])) {
        --begin;
    }
    Fix fix{"Move 'guess' to %control", {{{begin, guess->end()}, ""}}};
    if (!broken.taskHas("control")) {
        const std::string indent(broken.indent());
        fix.edits.push_back(broken.behindLine(indent + "%control\n" + indent + "  guess true\n"));
    }
    return fix;
}

std::optional<Fix> multiSource(const Broken& broken) {
    std::vector<const Occurrence*> tasks;
    for (const auto& o : broken.occurrencesInLine()) {
        if (o.kind == NameKind::task) {
            tasks.push_back(&o);
        }
    }
    if (tasks.size() < 2) {
        return std::nullopt;
    }
    const std::string indent(broken.indent());
    std::string lines = indent + "%when\n";
    for (std::size_t i = 1; i < tasks.size(); ++i) {
        lines += indent + "  completed " + std::string(broken.file.name(*tasks[i])) + "\n";
    }
    return Fix{"Wait for the further tasks by %when",
               {{{tasks.front()->end(), tasks.back()->end()}, ""}, broken.behindLine(std::move(lines))}};
}

/// Another keyword for the same value.
std::optional<Fix> renameDirective(const Broken& broken, std::string_view from, const std::string& to) {
    const Occurrence* directive = broken.inLine(NameKind::directive, from);
    return directive == nullptr ? std::nullopt : replaceRange({directive->begin, directive->end()}, to);
}

std::optional<Fix> keywordsToRunner(const Broken& broken) {
    return renameDirective(broken, "keywords", "runner");
}

std::optional<Fix> keywordsToArgs(const Broken& broken) {
    return renameDirective(broken, "keywords", "args");
}

std::optional<Fix> addProgramXtb(const Broken& broken) {
    const auto begin = broken.wholeLine().begin;
    return Fix{"Add '%program xtb'", {{{begin, begin}, std::string(broken.indent()) + "%program xtb\n"}}};
}

/// The keywords of a task of program other as template and parameters, as the parser understands them.
std::optional<Fix> keywordsToTemplate(const Broken& broken) {
    const auto& document = broken.session.analyses.of(broken.text).document;
    const auto block =
        enclosing(broken.file.index, blockAt(broken.file.index, broken.range.begin), BlockKind::task);
    const auto name = broken.file.blockName(block);
    if (!document || name.empty() || broken.taskHas("template") || broken.taskHas("param")) {
        return std::nullopt;
    }
    const auto& tasks = document->templateTasks.get();
    const auto task =
        std::find_if(tasks.begin(), tasks.end(), [name](const auto& t) { return t.name == name; });
    if (task == tasks.end() || !taskdsl::isLegacyPairList(*task)) {
        return std::nullopt; // some of it would be lost
    }
    const std::string indent(broken.indent());
    std::string lines = indent + "%template " + taskdsl::resolvedTemplateName(*task).str() + "\n";
    if (const auto parameters = taskdsl::resolvedParams(*task); !parameters.empty()) {
        lines += indent + "%param " + parameters.str() + "\n";
    }
    return Fix{"Write %template and %param", {{broken.wholeLine(), lines}}};
}

/// A name that no define or axis has.
std::string freeAxisName(const SourceFile& file) {
    std::string name = "choice";
    for (int number = 2; file.definitions.contains(name); ++number) {
        name = "choice_" + std::to_string(number);
    }
    return name;
}

/// The edit that declares an axis: in the matrix of the file, or in a new one in front of the first task.
TextEdit axisDeclaration(const Broken& broken, const std::string& axis) {
    const auto& blocks = broken.file.index.blocks;
    const auto matrix = std::find_if(blocks.begin(), blocks.end(),
                                     [](const Block& b) { return b.kind == BlockKind::matrix; });
    const auto source = broken.source();
    if (matrix != blocks.end()) {
        const auto body = trimLeft(source.substr(std::min(source.find('\n', matrix->begin), source.size())));
        const auto end = std::min(source.find('\n', matrix->end), source.size() - 1) + 1;
        return {{end, end}, (body.starts_with('-') ? "  - " : "  ") + axis + "\n"};
    }
    const auto first = std::find_if(blocks.begin(), blocks.end(), [](const Block& b) {
        return b.kind == BlockKind::task || b.kind == BlockKind::loop || b.kind == BlockKind::plot ||
               b.kind == BlockKind::derive;
    });
    const std::size_t begin = first == blocks.end() ? 0 : first->begin;
    return {{begin, begin}, "matrix:\n  " + axis + "\n"};
}

/// `{a,b}` in the keywords as an axis.
std::optional<Fix> bracesToAxis(const Broken& broken) {
    const auto line = broken.wholeLine();
    const auto text = broken.source().substr(line.begin, line.end - line.begin);
    const auto open = text.find('{');
    const auto close = text.find('}', std::min(open, text.size()));
    const auto comma = text.find(',', std::min(open, text.size()));
    if (close == std::string_view::npos || comma > close) {
        return std::nullopt;
    }
    const auto name = freeAxisName(broken.file);
    const auto values = splitTrimmed(text.substr(open + 1, close - open - 1), ',');
    return Fix{"Declare the alternatives as axis '" + name + "'",
               {axisDeclaration(broken, name + ": " + join(values, ", ")),
                {{line.begin + open, line.begin + close + 1}, "[" + name + "]"}}};
}

std::optional<Fix> nearestFix(const Broken& broken, const std::vector<std::string_view>& words) {
    const auto word = broken.source().substr(broken.range.begin, broken.range.size());
    const auto nearest = nearestWord(word, words);
    return nearest.empty() ? std::nullopt : replaceRange(broken.range, std::string(nearest));
}

/// A task that is called nearly so, but not the one that the name is in: a task that waits for itself never
/// runs.
std::optional<Fix> nearestTask(const Broken& broken) {
    const auto& index = broken.file.index;
    const auto task = enclosing(index, blockAt(index, broken.range.begin), BlockKind::task);
    const auto own = broken.file.blockName(task);
    std::vector<std::string_view> names;
    for (const SourceFile* file : broken.session.sources.documentFiles(broken.file)) {
        for (const auto& o : file->index.occurrences) {
            if (o.kind == NameKind::task && o.role == NameRole::definition && file->name(o) != own) {
                names.push_back(file->name(o));
            }
        }
    }
    return nearestFix(broken, names);
}

std::optional<Fix> nearestDirective(const Broken& broken) {
    if (broken.issue.message.find("unknown directive") == std::string::npos) {
        return std::nullopt;
    }
    std::vector<std::string_view> names;
    for (const auto& row : helpTable()) {
        if (row.topic == HelpTopic::directive) {
            names.push_back(row.word);
        }
    }
    return nearestFix(broken, names);
}

/// Whether a fix is sure enough to be made for all issues at once.
enum class Certainty { sure, guessed };

struct FixRow {
    std::string_view code;
    Mend mend;
    Certainty certainty;
};

constexpr std::array<FixRow, 16> fixes{{
    {"legacy-hash-include", includeSign, Certainty::guessed}, // the file may be missing
    {"legacy-fragment-kind-alias", quotedAlias, Certainty::sure},
    {"legacy-control-gpu-alias", controlAlias, Certainty::sure},
    {"legacy-process-alias", quotedAlias, Certainty::sure},
    {"legacy-multi-source", multiSource, Certainty::sure},
    {"legacy-source-guess", sourceGuess, Certainty::sure},
    {"legacy-other-keywords", keywordsToTemplate, Certainty::sure},
    {"legacy-script-runner", keywordsToRunner, Certainty::sure},
    {"legacy-xtb-keywords", keywordsToArgs, Certainty::sure},
    {"legacy-implicit-xtb-args", addProgramXtb, Certainty::sure},
    {"legacy-keyword-brace-expansion", bracesToAxis, Certainty::guessed}, // makes more tasks
    {"parse-error", nearestDirective, Certainty::guessed},
    {"missing-source-task", nearestTask, Certainty::guessed},
    {"missing-guess-task", nearestTask, Certainty::guessed},
    {"missing-completed-target", nearestTask, Certainty::guessed},
    {"missing-placeholder-task", nearestTask, Certainty::guessed},
}};

/// An issue of the text with its fix.
struct FixedIssue {
    const lint::LintIssue* issue;
    ByteRange range;
    Fix fix;
    Certainty certainty;
};

/// True when the ranges have a place in common, be it the end of one.
bool touch(ByteRange left, ByteRange right) noexcept {
    return left.begin <= right.end && right.begin <= left.end;
}

/// The fixes of all issues; of those that are guesses only the ones that touch the range.
std::vector<FixedIssue> fixesOf(Session& session, const OpenText& text, ByteRange asked) {
    IssuePlaces places(text);
    const SourceFile& file = session.sources.of(text);
    std::vector<FixedIssue> found;
    for (const auto& issue : session.analyses.of(text).report.issues) {
        const auto row =
            std::find_if(fixes.begin(), fixes.end(), [&](const FixRow& r) { return r.code == issue.code; });
        const auto place = places.of(issue);
        if (row == fixes.end() || !place.file.empty()) {
            continue;
        }
        const auto range = narrowedRange(issue, place.range, file);
        if (row->certainty == Certainty::guessed && !touch(range, asked)) {
            continue;
        }
        if (auto fix = row->mend({session, text, file, issue, range})) {
            found.push_back({&issue, range, *std::move(fix), row->certainty});
        }
    }
    return found;
}

Json editJson(const Session& session, const OpenText& text, const std::vector<TextEdit>& edits) {
    PositionWalk walk(text.buffer, session.client.unit);
    Json list = Json::array();
    for (const auto& edit : edits) {
        list.push_back({{"range", rangeJson(walk, edit.range)}, {"newText", edit.text}});
    }
    return {{"changes", {{text.uri, std::move(list)}}}};
}

/// The edits of all sure fixes that do not touch one another.
std::vector<TextEdit> allEdits(const std::vector<FixedIssue>& found) {
    std::vector<TextEdit> edits;
    std::map<std::size_t, std::size_t> taken; // begins and ends of what is edited
    const auto isFree = [&taken](const TextEdit& edit) {
        const auto behind = taken.upper_bound(edit.range.end);
        return behind == taken.begin() || std::prev(behind)->second < edit.range.begin;
    };
    for (const auto& issue : found) {
        const auto& made = issue.fix.edits;
        if (issue.certainty == Certainty::sure && std::all_of(made.begin(), made.end(), isFree)) {
            edits.insert(edits.end(), made.begin(), made.end());
            for (const auto& edit : made) {
                auto& end = taken[edit.range.begin];
                end = std::max(end, edit.range.end);
            }
        }
    }
    std::stable_sort(edits.begin(), edits.end(), [](const TextEdit& left, const TextEdit& right) {
        return left.range.begin < right.range.begin;
    });
    return edits;
}

/// True when the client asks for actions of that kind, or of any.
bool asksFor(const Json& params, std::string_view kind) {
    const Json& only = member(member(params, "context"), "only");
    return !only.is_array() || std::any_of(only.begin(), only.end(), [kind](const Json& wanted) {
        return wanted.is_string() && (kind == wanted.get_ref<const std::string&>() ||
                                      kind.starts_with(wanted.get_ref<const std::string&>() + "."));
    });
}

/// How many letters have to be changed, put in or left out, or swapped with the next one.
std::size_t distance(std::string_view left, std::string_view right) {
    const auto same = [&](std::size_t i, std::size_t j) { return lowerChar(left[i]) == lowerChar(right[j]); };
    std::vector<std::size_t> beforeLast(right.size() + 1);
    std::vector<std::size_t> last(right.size() + 1);
    std::vector<std::size_t> row(right.size() + 1);
    std::iota(last.begin(), last.end(), std::size_t{0});
    for (std::size_t i = 0; i < left.size(); ++i) {
        row[0] = i + 1;
        for (std::size_t j = 0; j < right.size(); ++j) {
            row[j + 1] = std::min({last[j] + (same(i, j) ? 0U : 1U), last[j + 1] + 1, row[j] + 1});
            if (i > 0 && j > 0 && same(i, j - 1) && same(i - 1, j)) {
                row[j + 1] = std::min(row[j + 1], beforeLast[j - 1] + 1);
            }
        }
        beforeLast.swap(last);
        last.swap(row);
    }
    return last.back();
}

} // namespace

std::string_view nearestWord(std::string_view word, const std::vector<std::string_view>& words) {
    constexpr std::size_t longest = 200;
    std::string_view nearest;
    std::size_t least = std::max<std::size_t>(1, word.size() / 3) + 1;
    for (const auto candidate : words) {
        const auto gap =
            candidate.size() > word.size() ? candidate.size() - word.size() : word.size() - candidate.size();
        if (candidate.size() > longest || word.size() > longest || gap >= least) {
            continue;
        }
        if (const auto changes = distance(word, candidate); changes < least) {
            least = changes;
            nearest = candidate;
        }
    }
    return nearest;
}

Json codeActions(Session& session, const Json& params) {
    const OpenText& text = requireText(session, params);
    const auto range = readRange(member(params, "range"), text.buffer, session.client.unit);
    if (!range) {
        throw ResponseError(ErrorCode::invalidParams, "range expected");
    }
    const auto found = fixesOf(session, text, *range);
    Json actions = Json::array();
    for (const auto& issue : found) {
        if (touch(issue.range, *range) && asksFor(params, "quickfix")) {
            actions.push_back({{"title", issue.fix.title},
                               {"kind", "quickfix"},
                               {"isPreferred", issue.certainty == Certainty::sure},
                               {"edit", editJson(session, text, issue.fix.edits)}});
        }
    }
    const auto all = allEdits(found);
    if (!all.empty() && asksFor(params, "source.fixAll")) {
        actions.push_back({{"title", "Write all older forms in their modern form"},
                           {"kind", "source.fixAll"},
                           {"edit", editJson(session, text, all)}});
    }
    return actions;
}

} // namespace morquill::lsp
