#include "taskdsl/base/foreach_header.h"

#include "support/cursor.h"
#include "support/text.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

// ^@foreach(\?)?\s+([A-Za-z_][A-Za-z0-9_.-]*)\s+in\s+(.+?)\s*$, else the same without " in <source>"
std::optional<ForeachHeader> parseForeachHeader(std::string_view text) noexcept {
    Cursor cursor(dropTrailingSpace(text));
    if (!cursor.take("@foreach")) {
        return std::nullopt;
    }
    ForeachHeader header;
    header.isOptional = cursor.take('?');
    const auto keywordEnd = cursor.place();
    if (cursor.skipSpace().place() == keywordEnd || cursor.atEnd() || !isWordStart(cursor.rest().front())) {
        return std::nullopt;
    }
    header.name = cursor.takeWhile(isKeyChar);
    if (cursor.atEnd()) {
        return header;
    }
    const auto nameEnd = cursor.place();
    if (cursor.skipSpace().place() == nameEnd || !matchWord(cursor.rest(), "in")) {
        return std::nullopt;
    }
    cursor.take("in");
    if (cursor.skipSpace().atEnd()) {
        return std::nullopt;
    }
    header.source = cursor.rest();
    return header;
}

} // namespace morquill::taskdsl
