#include "taskdsl/base/line_kind.h"

#include "taskdsl/base/foreach_header.h"
#include "taskdsl/base/scan.h"

namespace morquill::taskdsl {

namespace {

LineKind kindOfBlockLine(std::string_view clean) noexcept {
    if (beginsBlock(clean, "@plot")) {
        return LineKind::plot;
    }
    if (beginsBlock(clean, "@derive")) {
        return LineKind::derive;
    }
    if (clean == "@end") {
        return LineKind::end;
    }
    return parseForeachHeader(clean) ? LineKind::loop : LineKind::text;
}

} // namespace

LineKind kindOfCleanLine(std::string_view clean) noexcept {
    if (clean.empty()) {
        return LineKind::empty;
    }
    switch (clean.front()) {
    case '%':
        return directiveName(clean).empty() ? LineKind::text : LineKind::directive;
    case '$':
        return taskHeaderName(clean).empty() ? LineKind::text : LineKind::taskHeader;
    case '&':
        if (beginsBlock(clean, "&INCLUDE")) {
            return LineKind::include;
        }
        return beginsBlock(clean, "&FRAGMENT") ? LineKind::fragment : LineKind::text;
    case '@':
        return kindOfBlockLine(clean);
    default:
        return LineKind::text;
    }
}

bool isStructure(LineKind kind) noexcept {
    switch (kind) {
    case LineKind::directive:
    case LineKind::taskHeader:
    case LineKind::include:
    case LineKind::plot:
    case LineKind::derive:
    case LineKind::end:
        return true;
    case LineKind::empty:
    case LineKind::removedInclude:
    case LineKind::text:
    case LineKind::fragment:
    case LineKind::loop:
        break;
    }
    return false;
}

bool isHashInclude(std::string_view trimmed) noexcept {
    return trimmed.starts_with('#') && textAfterWord(trimmed, "#INCLUDE").has_value();
}

} // namespace morquill::taskdsl
