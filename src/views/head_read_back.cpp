// The prelude of a printed document, line by line: settings, defines and matrix axes.

#include "views/read_back.h"

#include "support/text.h"
#include "taskdsl/generate/define_block.h"
#include "taskdsl/generate/matrix.h"
#include "taskdsl/generate/parse_context.h"
#include "taskdsl/generate/prelude.h"
#include "views/canonical_writer.h"

#include <algorithm>
#include <string>

namespace morquill::views {

using taskdsl::DiagnosticError;
using taskdsl::MatrixAxis;
using taskdsl::ValueMap;

namespace {

/// True for a key that every reader of the prelude takes literally.
bool isPlainKey(std::string_view key) noexcept {
    return !key.empty() && isWordStart(key.front()) && std::all_of(key.begin(), key.end(), isKeyChar) &&
           key != "define" && key != "matrix" && !equalsNoCase(key, "null");
}

/// True for a value that YAML takes literally, bare or between double quotes: printable ASCII.
bool isPlainSettingValue(std::string_view value) noexcept {
    return value.empty() || (isKeyChar(value.front()) && std::all_of(value.begin(), value.end(), [](char c) {
                                 return c >= ' ' && c <= '~';
                             }));
}

/// Reads one line of settings, after the line with which every head begins.
bool readsAsSetting(const std::string& line, const std::string& key, const std::string& value) {
    const std::string text = "dsl_version: 2\n" + line;
    taskdsl::ParseContext run({});
    run.followsIncludes = false;
    taskdsl::DocumentContext context(run);
    const auto lines = taskdsl::makeSourceLines(text, {});
    try {
        const auto [read, next] = taskdsl::parsePrelude(lines, "", context);
        return next == lines.size() && read.defines.empty() && read.matrixAxes.empty() &&
               read.collections.empty() && read.settings == ValueMap{{"dsl_version", "2"}, {key, value}};
    } catch (const DiagnosticError&) {
        return false;
    }
}

bool readsAsDefine(const std::string& line, const std::string& key, const std::string& value) {
    return taskdsl::parseDefineBlock(taskdsl::makeSourceLines(line, {}), 0).value == ValueMap{{key, value}};
}

bool readsAsAxis(const std::string& lines, const MatrixAxis& axis) {
    try {
        return taskdsl::parseMatrixBlock(taskdsl::makeSourceLines(lines, {}), 0).value == std::vector{axis};
    } catch (const DiagnosticError&) {
        return false;
    }
}

/// True when the matrix prints this axis with a line that reads back.
bool isFaithfulAxis(const MatrixAxis& axis, MatrixForm form) {
    return isPlainKey(axis.key) || readsAsAxis(canonicalAxis(axis, form), axis);
}

} // namespace

void reportLostHeadLines(const ReadBackContext& context) {
    const auto report = [&context](std::string_view what, std::string_view key) {
        context.warnings(std::string(what) + " '" + oneLine(key) +
                         "' does not read back: the prelude reads its line as something else");
    };
    const auto& document = context.document;
    for (const auto& [key, value] : document.settings) {
        if (key != "dsl_version" && !(isPlainKey(key) && isPlainSettingValue(value)) &&
            !readsAsSetting(canonicalSetting(key, value), key, value)) {
            report("setting", key);
        }
    }
    for (const auto& [key, value] : document.defines) {
        if (!isPlainKey(key) && !readsAsDefine(canonicalDefine(key, value), key, value)) {
            report("define", key);
        }
    }
    if (context.view != CanonicalView::sourceView) {
        return;
    }
    const MatrixForm form = matrixForm(document);
    for (const auto& axis : document.matrixAxes) {
        if (!isFaithfulAxis(axis, form)) {
            report("matrix axis", axis.key);
        }
    }
}

} // namespace morquill::views
