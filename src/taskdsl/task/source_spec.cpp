#include "taskdsl/task/source_spec.h"

#include "support/match.h"
#include "support/number.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/base/shell_words.h"
#include "taskdsl/task/task_document.h"

#include <algorithm>
#include <set>
#include <utility>

namespace morquill::taskdsl {

namespace {

constexpr std::string_view xyzPrefix = "xyz=";
constexpr std::string_view frameKey = "frame";
constexpr std::string_view framePrefix = "frame=";
constexpr std::string_view geomKey = "geom";
constexpr std::string_view geomPrefix = "geom.";

[[noreturn]] void fail(const std::string& message) {
    throw DiagnosticError(message);
}

[[noreturn]] void failBinding(std::string_view key, std::string_view fault) {
    fail("structured %source binding " + singleQuoted(key) + " " + std::string(fault));
}

/// Takes off every pair of quotes that still encloses a word after the words were split. One pair alone would
/// leave a value that loses the next one when it is printed and read again.
std::string_view unquoteAll(std::string_view word) {
    for (;;) {
        const auto bare = unquote(word);
        if (bare == word) {
            return bare;
        }
        word = bare;
    }
}

/// A word of an inline source. Backslashes are left bare where word splitting takes them literally.
std::string quoteInlineWord(std::string_view word) {
    const bool plain =
        !word.empty() && word.back() != '\\' && word.find("\\\\") == std::string_view::npos &&
        std::none_of(word.begin(), word.end(), [](char c) { return isSpace(c) || c == '"' || c == '\''; });
    return plain ? std::string(word) : quoteForcedShellWord(word);
}

/// The frame of a binding or of an inline file, as a further word.
template <class Source>
std::string frameSuffix(const Source& source) {
    return source.hasFrame ? " frame=" + std::to_string(source.frameIndex) : std::string{};
}

SourceXyz readXyz(std::string_view text) {
    auto words = splitShellWords(text.substr(xyzPrefix.size()));
    SourceXyz xyz;
    if (!words.empty()) {
        xyz.file = std::move(words.front());
        words.erase(words.begin());
    }
    xyz.furtherWords = std::move(words);
    rereadXyz(xyz);
    return xyz;
}

/// The first `frame=` among the further words.
auto findFrameWord(const SourceXyz& xyz) {
    return std::find_if(xyz.furtherWords.begin(), xyz.furtherWords.end(),
                        [](const std::string& word) { return word.starts_with(framePrefix); });
}

void readBindingKey(SourceBinding& binding, std::string_view key) {
    if (!isDottedIdentifier(key)) {
        fail("invalid structured %source binding key " + singleQuoted(key) +
             "; use dot-separated identifiers beginning with a letter");
    }
    binding.key = key;
    if (key == geomKey || key == "geom.main") {
        binding.key = geomKey;
    } else if (key.starts_with(geomPrefix)) {
        binding.slot = key.substr(geomPrefix.size());
        if (!isIdentifier(binding.slot)) {
            fail("invalid geometry binding key " + singleQuoted(key) + "; expected geom or geom.<slot>");
        }
    } else {
        binding.role = BindingRole::auxiliary;
    }
}

void readBindingSource(SourceBinding& binding, std::string_view word) {
    if (word.empty()) {
        failBinding(binding.key, "has an empty source reference");
    }
    if (word == "origin") {
        binding.sourceKind = BindingSource::origin;
    } else if (word == "restart") {
        binding.sourceKind = BindingSource::restart;
    } else if (word.starts_with(xyzPrefix)) {
        binding.sourceKind = BindingSource::xyz;
        binding.sourceValue = unquoteAll(word.substr(xyzPrefix.size()));
        if (binding.sourceValue.empty()) {
            failBinding(binding.key, "is missing the file name after xyz=");
        }
    } else {
        binding.sourceKind = BindingSource::task;
        binding.sourceValue = word;
        binding.sourceTask = word;
    }
}

std::pair<std::string, std::string> splitSelector(std::string_view word) {
    const auto equals = word.find('=');
    if (equals == std::string_view::npos || equals == 0 || equals + 1 == word.size()) {
        fail("invalid structured %source selector " + singleQuoted(word) + "; expected selector=value");
    }
    std::pair<std::string, std::string> selector(unquoteAll(word.substr(0, equals)),
                                                 unquoteAll(word.substr(equals + 1)));
    if (!isDottedIdentifier(selector.first)) {
        fail("invalid structured %source selector key " + singleQuoted(selector.first) +
             "; use dot-separated identifiers beginning with a letter");
    }
    if (selector.second.empty()) {
        fail("structured %source selector " + singleQuoted(selector.first) + " has an empty value");
    }
    return selector;
}

/// A binding record filled by hand may name its task in `sourceTask` alone.
bool isBareTask(const SourceBinding& binding) noexcept {
    return !binding.sourceTask.empty() && binding.sourceValue.empty();
}

void validateBinding(const SourceBinding& binding, Placeholders placeholders) {
    if (!isDottedIdentifier(binding.key)) {
        fail("structured %source contains an invalid binding key");
    }
    const bool needsValue =
        binding.sourceKind == BindingSource::task || binding.sourceKind == BindingSource::xyz;
    if (needsValue && binding.sourceValue.empty() && binding.sourceTask.empty()) {
        failBinding(binding.key, "has an empty source reference");
    }
    if (binding.hasFrame && binding.frameIndex < 1) {
        failBinding(binding.key, "has an invalid frame index");
    }
    const bool isXyz = binding.sourceKind == BindingSource::xyz && !isBareTask(binding);
    for (const auto& [key, value] : binding.selectors) {
        if (placeholders == Placeholders::refused && isXyz && key == frameKey) {
            failBinding(binding.key, "has an invalid frame selector; frame must be a positive integer");
        }
        if (!isDottedIdentifier(key) || value.empty()) {
            failBinding(binding.key, "has an invalid selector");
        }
    }
}

std::string bindingReference(const SourceBinding& binding) {
    if (isBareTask(binding)) {
        return quoteShellWord(binding.sourceTask);
    }
    switch (binding.sourceKind) {
    case BindingSource::restart:
        return "restart";
    case BindingSource::task:
        return quoteShellWord(binding.sourceValue);
    case BindingSource::xyz:
        return std::string(xyzPrefix) + quoteShellWord(binding.sourceValue) + frameSuffix(binding);
    case BindingSource::origin:
        break;
    }
    return "origin";
}

std::string bindingKey(const SourceBinding& binding) {
    if (!binding.key.empty()) {
        return binding.key;
    }
    return binding.slot == mainSlot ? std::string(geomKey) : std::string(geomPrefix) + binding.slot;
}

std::string formatXyz(const SourceXyz& xyz) {
    auto text = std::string(xyzPrefix) + quoteInlineWord(xyz.file) + frameSuffix(xyz);
    for (const auto& word : xyz.furtherWords) {
        if (!word.empty()) {
            // A bare last word `guess` would be dropped as the flag of older files.
            const bool isFlag = &word == &xyz.furtherWords.back() && (word == "guess" || word == "gues");
            text += ' ';
            text += isFlag ? quoteForcedShellWord(word) : quoteInlineWord(word);
        }
    }
    return text;
}

std::string formatBindings(const std::vector<SourceBinding>& bindings) {
    std::string text;
    for (const auto& binding : bindings) {
        if (&binding != &bindings.front()) {
            text += '\n';
        }
        text += formatSourceBinding(binding);
    }
    return text;
}

} // namespace

SourceSpec readInlineSource(std::string_view text) {
    text = trim(text);
    if (text.empty()) {
        return SourceNone{};
    }
    if (text == "origin") {
        return SourceOrigin{};
    }
    if (text == "restart") {
        return SourceRestart{};
    }
    if (text.starts_with(xyzPrefix)) {
        return readXyz(text);
    }
    auto names = splitTrimmed(text, ',');
    if (names.empty()) {
        names.emplace_back(text);
    }
    return SourceTaskList{std::move(names)};
}

void requireNumericFrame(const SourceSpec& source) {
    const auto* xyz = std::get_if<SourceXyz>(&source);
    if (xyz != nullptr && !xyz->hasFrame && findFrameWord(*xyz) != xyz->furtherWords.end()) {
        fail("%source xyz frame selector must be a positive integer");
    }
}

SourceSpec parseInlineSource(std::string_view text) {
    auto source = readInlineSource(text);
    requireNumericFrame(source);
    return source;
}

SourceSpec parseSourceText(std::string_view text) {
    text = trim(text);
    if (text.find('\n') == std::string_view::npos) {
        return parseInlineSource(text);
    }
    SourceStructured structured;
    for (const auto line : splitLines(text)) {
        const auto entry = trim(line);
        if (!entry.empty()) {
            structured.bindings.push_back(parseSourceBinding(entry));
        }
    }
    validateStructuredSource(structured.bindings, Placeholders::refused);
    return structured;
}

SourceBinding parseSourceBinding(std::string_view line) {
    const auto words = splitShellWords(line);
    if (words.size() < 2) {
        fail("structured %source entry must have '<binding-key> <source> [selector=value ...]': " +
             singleQuoted(trim(line)));
    }
    SourceBinding binding;
    readBindingKey(binding, trim(words[0]));
    readBindingSource(binding, words[1]);
    bool frameGiven = false;
    for (std::size_t i = 2; i < words.size(); ++i) {
        auto selector = splitSelector(words[i]);
        if (binding.sourceKind == BindingSource::xyz && selector.first == frameKey) {
            if (frameGiven) {
                failBinding(binding.key, "has more than one frame= selector");
            }
            frameGiven = true;
            if (const auto frame = readPositiveInt(selector.second)) {
                binding.frameIndex = *frame;
                binding.hasFrame = true;
                continue;
            }
            if (selector.second.find('[') == std::string::npos) {
                fail("structured %source frame selector must be a positive integer");
            }
        }
        binding.selectors.push_back(std::move(selector));
    }
    return binding;
}

void validateStructuredSource(const std::vector<SourceBinding>& bindings, Placeholders placeholders) {
    if (bindings.empty()) {
        fail("structured %source must contain at least one binding");
    }
    std::set<std::string_view> slots;
    for (const auto& binding : bindings) {
        validateBinding(binding, placeholders);
        if (binding.role != BindingRole::geometry) {
            continue;
        }
        if (!isIdentifier(binding.slot)) {
            fail("invalid geometry slot " + singleQuoted(binding.slot) +
                 "; slots must begin with a letter and contain only letters, digits, '_' or '-'");
        }
        if (!slots.insert(binding.slot).second) {
            fail("structured %source declares geometry slot " + singleQuoted(binding.slot) +
                 " more than once");
        }
    }
    if (!slots.empty() && !slots.contains(mainSlot)) {
        fail("structured %source with auxiliary geometry bindings must also declare geom");
    }
}

void rereadBinding(SourceBinding& binding) {
    if (binding.sourceKind == BindingSource::task) {
        binding.sourceTask.clear();
        if (const std::string word = std::exchange(binding.sourceValue, {}); !word.empty()) {
            readBindingSource(binding, word);
        }
    }
    if (binding.sourceKind != BindingSource::xyz || binding.hasFrame) {
        return;
    }
    const auto selector = std::find_if(binding.selectors.begin(), binding.selectors.end(),
                                       [](const auto& entry) { return entry.first == frameKey; });
    if (selector == binding.selectors.end()) {
        return;
    }
    if (const auto frame = readPositiveInt(selector->second)) {
        binding.frameIndex = *frame;
        binding.hasFrame = true;
        binding.selectors.erase(selector);
    }
}

void rereadXyz(SourceXyz& xyz) {
    xyz.file = std::string(unquoteAll(xyz.file));
    std::erase_if(xyz.furtherWords, [](const std::string& word) { return word.empty(); });
    const auto word = findFrameWord(xyz);
    if (xyz.hasFrame || word == xyz.furtherWords.end()) {
        return;
    }
    if (const auto frame = readPositiveInt(std::string_view(*word).substr(framePrefix.size()))) {
        xyz.frameIndex = *frame;
        xyz.hasFrame = true;
        xyz.furtherWords.erase(word);
    }
}

std::vector<SourceBinding> parseSourceBlock(const std::vector<SourceEntryLine>& lines,
                                            std::string_view taskName, const SourceSpan& directiveSpan) {
    const std::string task = "task " + singleQuoted(taskName);
    std::vector<SourceBinding> bindings;
    for (const auto& line : lines) {
        if (line.text.empty()) {
            continue;
        }
        try {
            bindings.push_back(parseSourceBinding(line.text));
        } catch (const DiagnosticError& fault) {
            throw DiagnosticError(line.span,
                                  task + " has invalid structured %source entry: " + fault.message());
        }
    }
    if (bindings.empty()) {
        throw DiagnosticError(
            directiveSpan,
            task + " has empty %source; provide an inline source or one or more structured bindings");
    }
    try {
        validateStructuredSource(bindings, Placeholders::allowed);
    } catch (const DiagnosticError& fault) {
        throw structuredSourceFault(directiveSpan, taskName, fault);
    }
    return bindings;
}

DiagnosticError structuredSourceFault(const SourceSpan& directiveSpan, std::string_view taskName,
                                      const DiagnosticError& reason) {
    return {directiveSpan,
            "task " + singleQuoted(taskName) + " has invalid structured %source: " + reason.message()};
}

std::string formatSourceBinding(const SourceBinding& binding) {
    auto text = bindingKey(binding) + " " + bindingReference(binding);
    for (const auto& [key, value] : binding.selectors) {
        if (!key.empty()) {
            text += " " + key + "=" + quoteShellWord(value);
        }
    }
    return text;
}

std::string formatSourceSpec(const SourceSpec& spec) {
    return std::visit(
        Match{[](const SourceNone&) { return std::string{}; },
              [](const SourceOrigin&) { return std::string("origin"); },
              [](const SourceRestart&) { return std::string("restart"); },
              [](const SourceTaskList& list) { return join(list.names, ","); },
              [](const SourceXyz& xyz) { return formatXyz(xyz); },
              [](const SourceStructured& structured) { return formatBindings(structured.bindings); }},
        spec);
}

void applySource(TaskInfo& task, SourceSpec source) {
    const auto* list = std::get_if<SourceTaskList>(&source);
    const auto* structured = std::get_if<SourceStructured>(&source);
    const bool isEmpty =
        (list != nullptr && list->names.empty()) || (structured != nullptr && structured->bindings.empty());
    task.source = isEmpty ? SourceSpec(SourceNone{}) : std::move(source);
}

std::string sourceText(const TaskInfo& task) {
    if (!hasSimpleSource(task)) {
        return {};
    }
    const auto& names = sourceTasks(task);
    return names.empty() ? formatSourceSpec(task.source) : names.front();
}

const std::vector<std::string>& sourceTasks(const TaskInfo& task) noexcept {
    static const std::vector<std::string> none;
    const auto* list = std::get_if<SourceTaskList>(&task.source);
    return list == nullptr ? none : list->names;
}

const std::vector<SourceBinding>& sourceBindings(const TaskInfo& task) noexcept {
    static const std::vector<SourceBinding> none;
    const auto* structured = std::get_if<SourceStructured>(&task.source);
    return structured == nullptr ? none : structured->bindings;
}

bool hasStructuredSource(const TaskInfo& task) noexcept {
    return !sourceBindings(task).empty();
}

bool hasSimpleSource(const TaskInfo& task) noexcept {
    if (const auto* list = std::get_if<SourceTaskList>(&task.source)) {
        return !list->names.empty() && !list->names.front().empty();
    }
    return !std::holds_alternative<SourceNone>(task.source) &&
           !std::holds_alternative<SourceStructured>(task.source);
}

std::string_view upstreamTask(const TaskInfo& task) noexcept {
    const auto& names = sourceTasks(task);
    return names.empty() ? std::string_view{} : names.front();
}

} // namespace morquill::taskdsl
