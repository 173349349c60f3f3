#include "taskdsl/generate/matrix.h"

#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/base/limits.h"

#include <algorithm>

namespace morquill::taskdsl {

namespace {

std::size_t leadingBlanks(std::string_view line) noexcept {
    return std::min(line.find_first_not_of(' '), line.size());
}

/// The two sides of the first colon; no key when there is none.
struct KeyLine {
    std::string_view key;
    std::string_view value;
    bool hasColon = false;
};

KeyLine splitKeyLine(std::string_view text) noexcept {
    const auto colon = text.find(':');
    if (colon == std::string_view::npos) {
        return {};
    }
    return {trim(text.substr(0, colon)), text.substr(colon + 1), true};
}

enum class Syntax { undecided, mapping, list };

/// The axes read so far and the syntax that the first line settled.
struct BlockReader {
    std::vector<MatrixAxis> axes;
    Syntax syntax = Syntax::undecided;
    std::size_t itemIndent = 0;

    void readItem(std::string_view text, std::size_t indent);
    void readMapping(std::string_view text);
    void readAttribute(std::string_view text, std::size_t indent);
};

[[noreturn]] void failMixed() {
    throw DiagnosticError("matrix cannot mix mapping syntax with list syntax");
}

void BlockReader::readItem(std::string_view text, std::size_t indent) {
    if (syntax == Syntax::mapping) {
        failMixed();
    }
    const auto line = splitKeyLine(text.substr(1));
    if (!line.hasColon || (syntax == Syntax::list && indent > itemIndent)) {
        throw DiagnosticError("matrix list syntax requires top-level '- key: values' items");
    }
    if (line.key.empty()) {
        throw DiagnosticError("matrix list item must define one primary axis");
    }
    syntax = Syntax::list;
    itemIndent = indent;
    axes.push_back({std::string(line.key), splitValueList(line.value), {}, {}});
}

void BlockReader::readMapping(std::string_view text) {
    syntax = Syntax::mapping;
    if (const auto line = splitKeyLine(text); line.hasColon) {
        axes.push_back({std::string(line.key), splitValueList(line.value), {}, {}});
    }
}

void BlockReader::readAttribute(std::string_view text, std::size_t indent) {
    MatrixAxis& axis = axes.back();
    const auto line = splitKeyLine(text);
    const bool isName = line.key == "name";
    const bool isMap = line.key == "map";
    if (indent <= itemIndent) {
        if (!isName && !isMap) {
            failMixed();
        }
        failAxis(axis, "attributes must be indented more than the '- ' item line");
    }
    if (line.key.empty()) {
        failAxis(axis, "contains an invalid attribute line");
    }
    if (!isName && !isMap) {
        failAxis(axis, "contains unknown attribute '" + std::string(line.key) + "'");
    }
    auto values = splitValueList(line.value);
    if (isName) {
        axis.names = std::move(values);
        return;
    }
    if (values.size() != 1) {
        failAxis(axis, "field 'map' must contain exactly one value");
    }
    axis.map = std::move(values.front());
}

} // namespace

void failAxis(const MatrixAxis& axis, std::string_view text) {
    throw DiagnosticError("matrix axis '" + axis.key + "' " + std::string(text));
}

TakenLines<std::vector<MatrixAxis>> parseMatrixBlock(const std::vector<SourceLine>& lines,
                                                     std::size_t start) {
    BlockReader reader;
    std::size_t next = start;
    for (; next < lines.size(); ++next) {
        const auto text = lines[next].clean();
        if (text.empty()) {
            continue;
        }
        const auto indent = leadingBlanks(lines[next].text());
        if (indent < 2 || lines[next].kind() == LineKind::taskHeader) {
            break;
        }
        if (text == "-" || text.starts_with("- ")) {
            reader.readItem(text, indent);
        } else if (reader.syntax == Syntax::list) {
            reader.readAttribute(text, indent);
        } else {
            reader.readMapping(text);
        }
    }
    return {std::move(reader.axes), next};
}

void mergeMatrixAxes(MatrixAxes target, const std::vector<MatrixAxis>& axes, NameClash clash) {
    for (const auto& axis : axes) {
        if (isReservedKey(axis.key)) {
            throw DiagnosticError("matrix axis '" + axis.key +
                                  "' is reserved for runtime %source placeholders");
        }
        if (const auto [known, isNew] = target.values.try_emplace(axis.key, axis.values); isNew) {
            if (target.axes.size() == limits::matrixAxes) {
                throw DiagnosticError("matrix has more than " + std::to_string(limits::matrixAxes) + " axes");
            }
            target.axes.push_back(axis);
        } else if (clash == NameClash::takeNew) {
            known->second = axis.values;
            const auto declared =
                std::find_if(target.axes.begin(), target.axes.end(),
                             [&axis](const MatrixAxis& other) { return other.key == axis.key; });
            if (declared != target.axes.end()) {
                *declared = axis;
            }
        }
    }
}

void mergeMatrixAxes(TaskDocument& document, const std::vector<MatrixAxis>& axes, NameClash clash) {
    mergeMatrixAxes({document.matrixAxes, document.matrixValues}, axes, clash);
}

} // namespace morquill::taskdsl
