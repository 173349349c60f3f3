#include "taskdsl/generate/yaml_section.h"

#include "support/byte_set.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"
#include "taskdsl/base/line_fault.h"
#include "taskdsl/base/scan.h"
#include "taskdsl/task/directive_reader.h"

#include <yaml-cpp/eventhandler.h>
#include <yaml-cpp/yaml.h>

#include <algorithm>
#include <cstdint>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// The library's tag of a scalar without quotes, block indicator and tag of its own.
constexpr std::string_view plainTag = "?";

/// Walks the nodes of one section. An alias gives one node two names, so a small text can describe a huge or
/// even an endless tree: what is taken out of it is counted.
class SectionWalk {
  public:
    [[nodiscard]] YamlSection read(const YAML::Node& root) && {
        if (!root.IsDefined() || root.IsNull()) {
            return {};
        }
        if (!root.IsMap()) {
            throw DiagnosticError("structured prelude must be a YAML mapping");
        }
        for (const auto& pair : root) {
            auto key = pair.first.as<std::string>();
            if (pair.second.IsSequence()) {
                auto items = readItems(pair.second);
                section_.collections.insert_or_assign(std::move(key), std::move(items));
            } else {
                flatten(pair.second, key, section_.settings, 0);
            }
        }
        return std::move(section_);
    }

  private:
    std::vector<ValueMap> readItems(const YAML::Node& sequence) {
        std::vector<ValueMap> items;
        std::size_t position = 0;
        for (const auto& node : sequence) {
            ++position;
            ValueMap item;
            if (node.IsScalar()) {
                take(item, "value", node.Scalar());
            } else if (node.IsMap()) {
                flatten(node, "", item, 0);
            } else {
                continue;
            }
            item.insert_or_assign("index", std::to_string(position));
            items.push_back(std::move(item));
        }
        return items;
    }

    void flatten(const YAML::Node& node, const std::string& key, ValueMap& values, std::size_t depth) {
        if (node.IsScalar()) {
            take(values, key, node.Scalar());
            return;
        }
        if (!node.IsMap()) {
            return;
        }
        if (depth == limits::yamlDepth) {
            throw YAML::RepresentationException(YAML::Mark::null_mark(),
                                                "mappings are nested more than " +
                                                    std::to_string(limits::yamlDepth) + " deep");
        }
        for (const auto& pair : node) {
            const auto name = pair.first.as<std::string>();
            count(key.size() + name.size());
            flatten(pair.second, key.empty() ? name : std::string(key).append(".").append(name), values,
                    depth + 1);
        }
    }

    void take(ValueMap& values, const std::string& key, const std::string& value) {
        count(value.size());
        values.insert_or_assign(key, value);
    }

    void count(std::size_t bytes) {
        ++entries_;
        text_ += bytes;
        if (entries_ > limits::yamlEntries || text_ > limits::yamlText) {
            throw YAML::RepresentationException(YAML::Mark::null_mark(),
                                                "the section stands for more than " +
                                                    std::to_string(limits::yamlEntries) + " values or " +
                                                    std::to_string(limits::yamlText >> 20) + " MiB of text");
        }
    }

    YamlSection section_;
    std::size_t entries_ = 0;
    std::size_t text_ = 0;
};

/// Listens to a document without keeping it.
class DocumentProbe : public YAML::EventHandler {
  public:
    YAML::Mark start;
    bool holdsSomething = false;

    void OnDocumentStart(const YAML::Mark& mark) override { start = mark; }
    void OnDocumentEnd() override {}
    void OnNull(const YAML::Mark&, YAML::anchor_t) override {}
    void OnAlias(const YAML::Mark&, YAML::anchor_t) override { holdsSomething = true; }
    void OnScalar(const YAML::Mark&, const std::string&, YAML::anchor_t, const std::string&) override {
        holdsSomething = true;
    }
    void OnSequenceStart(const YAML::Mark&, const std::string&, YAML::anchor_t,
                         YAML::EmitterStyle::value) override {
        holdsSomething = true;
    }
    void OnSequenceEnd() override {}
    void OnMapStart(const YAML::Mark&, const std::string&, YAML::anchor_t,
                    YAML::EmitterStyle::value) override {
        holdsSomething = true;
    }
    void OnMapEnd() override {}
};

/// `YAML::Load` reads the first document and drops what follows. Empty documents are harmless:
/// some people set the body off with a line of dashes.
void requireOneDocument(const std::string& text) {
    std::istringstream input(text);
    YAML::Parser parser(input);
    DocumentProbe first;
    parser.HandleNextDocument(first);
    for (int last = first.start.pos; parser;) {
        DocumentProbe next;
        parser.HandleNextDocument(next);
        // A document that makes no progress is one that the library cannot read.
        if (next.holdsSomething || next.start.pos <= last) {
            throw YAML::ParserException(next.start, "a second YAML document is not read");
        }
        last = next.start.pos;
    }
}

/// The number of the section's first line, counted from 0, that is a directive and was taken for more of a
/// plain value at the root; nothing when there is none. In other values such a line is text.
std::optional<std::size_t> findSwallowedDirective(const YAML::Node& root, std::string_view text) {
    if (!root.IsMap() || root.Style() == YAML::EmitterStyle::Flow ||
        text.find('%') == std::string_view::npos) {
        return std::nullopt;
    }
    const auto lines = splitLines(text);
    for (const auto& pair : root) {
        const bool isPlain = pair.second.IsScalar() && pair.second.Tag() == plainTag;
        if (!isPlain || pair.second.Scalar().find('%') == std::string::npos) {
            continue;
        }
        for (auto i = static_cast<std::size_t>(pair.first.Mark().line) + 1; i < lines.size(); ++i) {
            const auto line = lines[i];
            if (!trim(line).empty() && line.front() != ' ' && line.front() != '\t') {
                break;
            }
            if (isKnownDirective(cleanLine(line))) {
                return i;
            }
        }
    }
    return std::nullopt;
}

/// The place where the library met the fault; an invalid span when it does not know.
SourceSpan placeOf(const YAML::Exception& error, const std::string& path, std::size_t firstLine) {
    if (error.mark.is_null()) {
        return {};
    }
    const auto line = static_cast<std::int32_t>(static_cast<std::size_t>(error.mark.line) + firstLine);
    const std::int32_t column = error.mark.column + 1;
    return {SharedText(path), line, column, line, column};
}

/// The library's own message, with the line as it is counted in the file.
std::string reasonOf(const YAML::Exception& error, std::size_t firstLine) {
    if (error.mark.is_null()) {
        return error.msg;
    }
    return "yaml-cpp: error at line " +
           std::to_string(static_cast<std::size_t>(error.mark.line) + firstLine) + ", column " +
           std::to_string(error.mark.column + 1) + ": " + error.msg;
}

/// A word that YAML reads as the text that it is.
bool isPlainYamlWord(std::string_view word) noexcept {
    constexpr ByteSet wordBytes([](char c) { return isKeyChar(c) || c == '/' || c == '+'; });
    return !word.empty() && (isLetter(word.front()) || isDigit(word.front())) &&
           !equalsNoCase(word, "null") &&
           std::all_of(word.begin(), word.end(), [&](char c) { return wordBytes.contains(c); });
}

/// The settings of a section that is nothing but lines `<key>: <word>`, as nearly all are: those need no YAML
/// library, which takes a third of the time of a small file. Nothing for any other section.
std::optional<ValueMap> readPlainSettings(std::string_view text) {
    constexpr std::size_t fewBytes = 4096;
    ValueMap values;
    bool isPlain = text.size() <= fewBytes;
    forEachLine(text, [&](std::string_view line) {
        const auto colon = line.find(": ");
        isPlain = isPlain && (line.empty() ||
                              (colon != std::string_view::npos && isPlainYamlWord(line.substr(0, colon)) &&
                               isPlainYamlWord(line.substr(colon + 2))));
        if (isPlain && !line.empty()) {
            values.insert_or_assign(std::string(line.substr(0, colon)), std::string(line.substr(colon + 2)));
        }
    });
    return isPlain ? std::optional(std::move(values)) : std::nullopt;
}

} // namespace

YamlSection readYamlSection(const std::string& text, const std::string& path, std::size_t firstLine) {
    if (auto plain = readPlainSettings(text)) {
        return {*std::move(plain), {}};
    }
    try {
        const auto root = YAML::Load(text);
        if (const auto line = findSwallowedDirective(root, text)) {
            const auto number = static_cast<std::uint32_t>(firstLine + *line);
            throw misplacedDirective({std::string(splitLines(text)[*line]), path, number}, path);
        }
        requireOneDocument(text);
        return SectionWalk().read(root);
    } catch (const YAML::Exception& error) {
        throw DiagnosticError::namingPlace(placeOf(error, path, firstLine),
                                           "failed to parse YAML prelude in '" + shownPath(path) +
                                               "': " + reasonOf(error, firstLine));
    }
}

} // namespace morquill::taskdsl
