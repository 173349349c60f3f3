#include "lsp/help_page.h"

#include "lsp/help_table.h"
#include "support/text.h"

#include <optional>

namespace morquill::lsp {

namespace {

constexpr std::string_view head = R"(# Words of the language

What hover and completion of [`mqkit-lsp`](language-server.md) say of each word, in one table. Properties have
[a page of their own](properties.md). This page is written by `cmake --build <dir> --target words_doc`.
)";

/// A bar would end the cell of a table, in code, too.
std::string cell(std::string_view text) {
    return replaceAll(text, "|", "\\|");
}

std::string tableRow(const HelpRow& row) {
    const auto form = row.form.empty() ? row.word : row.form;
    return "| `" + cell(form) + "` | " + cell(row.text) + " |\n";
}

} // namespace

std::string renderHelpPage() {
    std::string text(head);
    std::optional<HelpTopic> topic;
    for (const auto& row : helpTable()) {
        if (row.topic != topic) {
            topic = row.topic;
            text += "\n## " + std::string(topicTitle(row.topic)) + "\n\n| form | meaning |\n|---|---|\n";
        }
        text += tableRow(row);
    }
    return text;
}

} // namespace morquill::lsp
