#pragma once

#include "support/text.h"
#include "taskdsl/derive/derive_output.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/diagnostic.h"

#include <string>
#include <string_view>

namespace morquill::taskdsl::derive {

/// The block as the task parser captures it when its header is line 1 of "t.mq".
inline CapturedBlock blockOf(std::string_view body, std::string header = "d") {
    CapturedBlock block{std::move(header), spanOfLine("t.mq", 1, "@derive d"), {}};
    std::uint32_t number = 1;
    for (const auto line : splitLines(body)) {
        block.lines.push_back({std::string(line), "t.mq", ++number});
    }
    return block;
}

/// The canonical statements of the body, without the lines of the header and the end and without indent.
inline std::string canonical(std::string_view body) {
    const std::string text = renderDerive(parseDerive(blockOf(body)), "");
    std::string statements;
    for (const auto line : splitLines(text)) {
        if (line.starts_with("  ")) {
            statements += std::string(line.substr(2)) + '\n';
        }
    }
    return statements;
}

/// The bare message with which the block is refused; "(accepted)" when it is not.
inline std::string refusal(std::string_view body, std::string header = "d") {
    try {
        (void)parseDerive(blockOf(body, std::move(header)));
    } catch (const DiagnosticError& error) {
        return error.message();
    }
    return "(accepted)";
}

} // namespace morquill::taskdsl::derive
