#pragma once

#include "support/text.h"
#include "taskdsl/derive/derive_output.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/diagnostic.h"
#include "without_spans.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

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

/// What a printed block says when it is read again; nothing when it is refused.
inline std::optional<DeriveSpec> readAgain(std::string_view printed) {
    const auto lines = splitLines(printed);
    std::string body;
    for (std::size_t i = 1; i + 1 < lines.size(); ++i) {
        body.append(lines[i]).append("\n");
    }
    try {
        return parseDerive(blockOf(body, std::string(lines.front().substr(sizeof("@derive ") - 1))));
    } catch (const DiagnosticError&) {
        return std::nullopt;
    }
}

/// A block in print, with what is said of it.
struct Printed {
    std::string text;
    std::vector<std::string> warnings;
};

/// Prints the block and expects of it what holds for every block: it reads back as the same records, or there
/// are warnings, and never both.
inline Printed printed(const DeriveSpec& spec) {
    Printed result;
    result.text =
        renderDerive(spec, "", [&](const std::string& warning) { result.warnings.push_back(warning); });
    const auto again = readAgain(result.text);
    const bool equal = again && withoutSpans(*again) == withoutSpans(spec);
    EXPECT_EQ(equal, result.warnings.empty()) << result.text << join(result.warnings, "\n");
    return result;
}

/// The statements of a printed block, without the lines of the header and the end and without indent.
inline std::string statementsOf(std::string_view text) {
    std::string statements;
    for (const auto line : splitLines(text)) {
        if (line.starts_with("  ")) {
            statements += std::string(line.substr(2)) + '\n';
        }
    }
    return statements;
}

/// The canonical statements of the body.
inline std::string canonical(std::string_view body) {
    return statementsOf(printed(parseDerive(blockOf(body))).text);
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
