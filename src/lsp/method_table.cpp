#include "lsp/method_table.h"

#include "lsp/completion.h"
#include "lsp/diagnostics.h"
#include "lsp/formatting.h"
#include "lsp/hints.h"
#include "lsp/hover.h"
#include "lsp/navigation.h"
#include "lsp/outline.h"
#include "lsp/quick_fixes.h"
#include "lsp/rename.h"
#include "lsp/semantic_tokens.h"
#include "lsp/text_notifications.h"
#include "lsp/workspace_symbols.h"

#include <algorithm>
#include <array>

namespace morquill::lsp {

namespace {

// clang-format off
constexpr std::array requests{
    RequestRow{"textDocument/documentSymbol", documentSymbols, Lifetime::ofText, "documentSymbolProvider"},
    RequestRow{"textDocument/foldingRange", foldingRanges, Lifetime::ofText, "foldingRangeProvider"},
    RequestRow{"textDocument/selectionRange", selectionRanges, Lifetime::ofText, "selectionRangeProvider"},
    RequestRow{"textDocument/documentLink", documentLinks, Lifetime::ofText, "documentLinkProvider", "{}"},
    RequestRow{"textDocument/formatting", formatDocument, Lifetime::ofText, "documentFormattingProvider"},
    RequestRow{"textDocument/rangeFormatting", formatRange, Lifetime::ofText, "documentRangeFormattingProvider"},
    RequestRow{"textDocument/definition", gotoDefinition, Lifetime::ofText, "definitionProvider"},
    RequestRow{"textDocument/references", findReferences, Lifetime::ofText, "referencesProvider"},
    RequestRow{"textDocument/documentHighlight", documentHighlight, Lifetime::ofText, "documentHighlightProvider"},
    RequestRow{"textDocument/rename", renameSymbol, Lifetime::ofText, "renameProvider", R"({"prepareProvider":true})"},
    RequestRow{"textDocument/prepareRename", prepareRename, Lifetime::ofText},
    RequestRow{"textDocument/semanticTokens/full", semanticTokensFull, Lifetime::ofText, "semanticTokensProvider",
               semanticTokensOptions},
    RequestRow{"textDocument/semanticTokens/full/delta", semanticTokensDelta, Lifetime::ofText},
    RequestRow{"textDocument/semanticTokens/range", semanticTokensRange, Lifetime::ofText},
    RequestRow{"textDocument/hover", hover, Lifetime::ofText, "hoverProvider"},
    RequestRow{"textDocument/completion", complete, Lifetime::ofText, "completionProvider",
               R"({"triggerCharacters":["%","[","{",".","@","&","="]})"},
    RequestRow{"textDocument/signatureHelp", signatureHelp, Lifetime::ofText, "signatureHelpProvider",
               R"({"triggerCharacters":["(",","]})"},
    RequestRow{"textDocument/inlayHint", inlayHints, Lifetime::ofText, "inlayHintProvider"},
    RequestRow{"textDocument/codeLens", codeLenses, Lifetime::ofText, "codeLensProvider", "{}"},
    RequestRow{"textDocument/codeAction", codeActions, Lifetime::ofText, "codeActionProvider",
               R"({"codeActionKinds":["quickfix","source.fixAll"]})"},
    RequestRow{"workspace/symbol", workspaceSymbols, Lifetime::any, "workspaceSymbolProvider"},
    RequestRow{"textDocument/diagnostic", pullDiagnostics, Lifetime::ofText, "diagnosticProvider",
               R"({"identifier":"mqkit","interFileDependencies":true,"workspaceDiagnostics":false})"},
};

constexpr std::array notifications{
    NotificationRow{"textDocument/didOpen", didOpen},
    NotificationRow{"textDocument/didChange", didChange},
    NotificationRow{"textDocument/didSave", didSave},
    NotificationRow{"textDocument/didClose", didClose},
    NotificationRow{"initialized", didInitialize},
    NotificationRow{"workspace/didChangeWatchedFiles", didChangeWatchedFiles},
    NotificationRow{"workspace/didChangeWorkspaceFolders", didChangeFolders},
};
// clang-format on

template <class Rows>
auto findRow(const Rows& rows, std::string_view method) noexcept {
    const auto row =
        std::find_if(rows.begin(), rows.end(), [method](const auto& r) { return r.method == method; });
    return row == rows.end() ? nullptr : &*row;
}

} // namespace

std::span<const RequestRow> requestTable() noexcept {
    return requests;
}

std::span<const NotificationRow> notificationTable() noexcept {
    return notifications;
}

const RequestRow* findRequest(std::string_view method) noexcept {
    return findRow(requests, method);
}

const NotificationRow* findNotification(std::string_view method) noexcept {
    return findRow(notifications, method);
}

Json serverCapabilities(const ClientFeatures& client) {
    Json capabilities{
        {"positionEncoding", client.unit == PositionUnit::utf8 ? "utf-8" : "utf-16"},
        {"textDocumentSync", {{"openClose", true}, {"change", 2}, {"save", Json{{"includeText", false}}}}},
        {"workspace", {{"workspaceFolders", {{"supported", true}, {"changeNotifications", true}}}}},
    };
    for (const auto& row : requests) {
        if (!row.capability.empty()) {
            capabilities[std::string(row.capability)] = Json::parse(row.options);
        }
    }
    return capabilities;
}

} // namespace morquill::lsp
