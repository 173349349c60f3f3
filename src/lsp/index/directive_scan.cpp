#include "lsp/index/directive_scan.h"

#include "lsp/index/block_scans.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"

#include <algorithm>
#include <array>

namespace morquill::lsp {

namespace {

using enum NameRole;

void addText(IndexBuilder& builder, std::string_view text) {
    builder.addWithKeys(NameKind::string, word, text);
}

void addKeysAlone(IndexBuilder& builder, std::string_view text) {
    builder.addKeys(text);
}

/// `xyz=<file>` at the front: the file is a link.
void addGeometry(IndexBuilder& builder, std::string_view text) {
    builder.add(NameKind::word, word, text.substr(0, 3));
    auto file = text.substr(4);
    const bool quoted = file.starts_with('"') || file.starts_with('\'');
    file =
        quoted ? file.substr(1, file.find(file.front(), 1) - 1) : file.substr(0, file.find_first_of(" \t"));
    builder.addWithKeys(NameKind::path, reference, file);
    builder.addLink(FileLink::Kind::geometry, file, std::string(file));
}

/// A source: the molecule, the restart data, a file, or a task.
void addSource(IndexBuilder& builder, std::string_view text) {
    text = trim(text);
    if (text == "origin" || text == "restart") {
        builder.add(NameKind::word, word, text);
    } else if (text.starts_with("xyz=")) {
        addGeometry(builder, text);
    } else {
        builder.addWithKeys(NameKind::task, reference, text);
    }
}

void scanSourceValue(IndexBuilder& builder, std::string_view text) {
    text = trim(taskdsl::unquote(text));
    if (text.starts_with("xyz=")) {
        addGeometry(builder, text);
        return;
    }
    for (const std::string_view mark : {"guess", "gues"}) {
        if (text.ends_with(mark) && text.size() > mark.size() &&
            isSpace(text[text.size() - mark.size() - 1])) {
            builder.add(NameKind::word, word, text.substr(text.size() - mark.size()));
            text = trim(text.substr(0, text.size() - mark.size()));
        }
    }
    while (!text.empty()) {
        const auto comma = text.find(',');
        addSource(builder, text.substr(0, comma));
        text.remove_prefix(comma == std::string_view::npos ? text.size() : comma + 1);
    }
}

/// `<binding> <source> [<selector>=<value> ...]`
void scanSourceLine(IndexBuilder& builder, std::string_view text) {
    const auto words = splitBlank(text);
    if (words.empty()) {
        return;
    }
    builder.add(NameKind::controlKey, word, words[0]);
    if (words.size() > 1) {
        addSource(builder, words[1]);
    }
    for (std::size_t i = 2; i < words.size(); ++i) {
        const auto equals = words[i].find('=');
        builder.add(NameKind::argument, word, words[i].substr(0, equals));
        if (equals != std::string_view::npos) {
            addText(builder, words[i].substr(equals + 1));
        }
    }
}

void scanProgram(IndexBuilder& builder, std::string_view text) {
    builder.add(NameKind::program, word, text);
}

void scanInterface(IndexBuilder& builder, std::string_view text) {
    const auto mode = text.substr(0, text.find_first_of(" \t"));
    builder.add(NameKind::word, word, mode);
    const auto task = taskdsl::unquote(text.substr(mode.size()));
    if (equalsNoCase(mode, "consume")) {
        builder.addWithKeys(NameKind::task, reference, task);
    }
}

/// A key and what follows it.
void scanKeyLine(IndexBuilder& builder, std::string_view text) {
    const auto key = text.substr(0, text.find_first_of(" \t=:"));
    builder.add(NameKind::controlKey, word, key);
    addText(builder, trim(text.substr(key.size())));
}

void scanControlLine(IndexBuilder& builder, std::string_view text) {
    const auto key = text.substr(0, text.find_first_of(" \t"));
    const auto value = trim(text.substr(key.size()));
    if (key != "guess" || value.empty()) {
        scanKeyLine(builder, text);
        return;
    }
    builder.add(NameKind::controlKey, word, key);
    const auto name = taskdsl::unquote(value);
    if (equalsNoCase(name, "true")) {
        builder.add(NameKind::word, word, name);
    } else {
        builder.addWithKeys(NameKind::task, reference, name);
    }
}

void scanCommandLine(IndexBuilder& builder, std::string_view text) {
    const auto command = text.substr(0, text.find_first_of(" \t"));
    builder.add(NameKind::word, word, command);
    addText(builder, trim(text.substr(command.size())));
}

constexpr std::array<DirectiveScanRow, 19> directiveRows{{
    {"source", scanSourceValue, scanSourceLine},
    {"program", scanProgram, addKeysAlone},
    {"interface", scanInterface, addKeysAlone},
    {"batch", addText, scanKeyLine},
    {"control", scanControlLine, scanControlLine},
    {"when", scanCondition, scanCondition},
    {"keywords", addText, addKeysAlone, Heredoc::taken},
    {"extrainput", addText, addKeysAlone, Heredoc::taken},
    {"extrainputs", addText, addKeysAlone, Heredoc::taken},
    {"template", addText, addKeysAlone},
    {"param", addText, addText},
    {"args", addText, addText},
    {"runner", addText, addKeysAlone},
    {"body", addText, addKeysAlone, Heredoc::taken},
    {"preprocess", addText, scanCommandLine},
    {"process", addText, scanCommandLine},
    {"mod", scanKeyLine, scanKeyLine},
    {"meta", addText, scanKeyLine},
    {"plot", addKeysAlone, addKeysAlone},
}};

constexpr DirectiveScanRow unknown{"", addText, addKeysAlone};

} // namespace

const DirectiveScanRow& directiveScan(std::string_view keyword) noexcept {
    const auto row = std::find_if(directiveRows.begin(), directiveRows.end(),
                                  [keyword](const DirectiveScanRow& r) { return r.keyword == keyword; });
    return row == directiveRows.end() ? unknown : *row;
}

} // namespace morquill::lsp
