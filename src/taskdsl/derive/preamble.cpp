#include "taskdsl/derive/block_reader.h"
#include "taskdsl/derive/condition.h"
#include "taskdsl/derive/derive_text.h"

namespace morquill::taskdsl::derive {

void readLet(BlockReader& reader, std::string_view text) {
    const auto halves = splitAtEquals(text);
    if (!halves) {
        reader.fail("let statement must be 'let name = expression'");
    }
    LetStatement statement;
    statement.name = requireIdentifier(halves->left, "let name must be an identifier", reader.span);
    statement.value = reader.expression(halves->right, "let statement requires an expression");
    reader.add(std::move(statement));
}

void readRequire(BlockReader& reader, std::string_view text) {
    RequireStatement statement;
    const auto halves = splitAtWord(text, "else", 0, Brackets::shielding);
    if (halves && halves->left.empty()) {
        reader.fail("require condition cannot be empty before else");
    }
    if (halves && halves->right.empty()) {
        reader.fail("require else requires an error message");
    }
    if (halves) {
        statement.message = readLabelledText(halves->right, "require error message", reader.span);
    }
    statement.condition = parseDeriveCondition(halves ? halves->left : text, reader.surface, reader.span);
    reader.add(std::move(statement));
}

void readReport(BlockReader& reader, std::string_view text) {
    const auto halves = splitAtEquals(text);
    if (!halves) {
        reader.fail("report statement must be 'report label = expression'");
    }
    ReportStatement statement;
    statement.label = readLabelledText(halves->left, "report label", reader.span);
    statement.value = reader.expression(halves->right, "report statement requires an expression");
    reader.add(std::move(statement));
}

} // namespace morquill::taskdsl::derive
