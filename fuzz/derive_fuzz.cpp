#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_output.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/derive/derive_substitute.h"
#include "taskdsl/derive/statement_parts.h"
#include "taskdsl/derive/task_references.h"

#include "support/text.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <iterator>
#include <optional>

/// The input is the text of a `@derive` block, the first line its header. A block that is read has to print,
/// and what is printed has to read back and print as the same text.
namespace {

using namespace morquill;
using namespace morquill::taskdsl;
using namespace morquill::taskdsl::derive;

/// Names that mean something else where they are printed bare: a value called `else` or `table`, a name with
/// brackets of its own.
bool isAmbiguous(std::string_view name) {
    static constexpr std::string_view words[] = {"or", "and", "in",  "matches", "not",  "else",
                                                 "as", "by",  "asc", "desc",    "unit", "from"};
    return name.find_first_of(":[]") != std::string_view::npos ||
           std::any_of(std::begin(words), std::end(words),
                       [&](std::string_view word) { return equalsNoCase(name, word); });
}

bool hasAmbiguousName(const plot::ExprRef& expression) {
    bool found = false;
    (void)plot::mapExpression(expression, [&](const plot::ExprRef& node) {
        if (const auto* identifier = plot::expressionAs<plot::IdentifierExpr>(node)) {
            found = found || isAmbiguous(identifier->name);
        } else if (const auto* call = plot::expressionAs<plot::CallExpr>(node)) {
            found = found || isAmbiguous(call->name);
        }
        return node;
    });
    return found;
}

bool hasAmbiguousName(const DeriveSpec& spec) {
    static constexpr std::string_view sinks[] = {"table", "value", "report", "atomvec", "kv", "artifact"};
    bool found = false;
    for (const auto& statement : spec.statements) {
        forEachPart(statement, Match{[&](const plot::ExprRef& expression) {
                                         found = found || (expression && hasAmbiguousName(expression));
                                     },
                                     [](const std::string&) {}});
        if (const auto* emit = std::get_if<EmitScalarStatement>(&statement)) {
            found = found || std::any_of(std::begin(sinks), std::end(sinks), [&](std::string_view sink) {
                        return equalsNoCase(emit->name, sink);
                    });
        }
    }
    return found;
}

CapturedBlock capture(std::string_view text) {
    CapturedBlock block;
    std::uint32_t number = 0;
    for (const auto line : splitLines(text)) {
        if (++number == 1) {
            block.header = std::string(trim(line));
            block.span = spanOfLine("fuzz.mq", number, line);
        } else {
            block.lines.push_back({std::string(line), "fuzz.mq", number});
        }
    }
    return block;
}

/// The statements between header and end, the header reduced to the name.
std::string bodyOf(const std::string& rendered) {
    constexpr std::size_t keyword = sizeof("@derive ") - 1;
    constexpr std::size_t end = sizeof("@end\n") - 1;
    return rendered.substr(keyword, rendered.size() - keyword - end);
}

[[noreturn]] void complain(const std::string& what, const std::string& first, const std::string& second) {
    std::fprintf(stderr, "%s\n--- first\n%s\n--- second\n%s\n", what.c_str(), first.c_str(), second.c_str());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    std::optional<DeriveSpec> spec;
    try {
        spec = parseDerive(capture(text));
    } catch (const DiagnosticError&) {
        return 0;
    }
    const std::string first = renderDerive(*spec, "");
    (void)collectDeriveTaskReferences(*spec);
    if (!hasAmbiguousName(*spec)) {
        try {
            const std::string second = renderDerive(parseDerive(capture(bodyOf(first))), "");
            if (second != first) {
                complain("printed differently", first, second);
            }
        } catch (const DiagnosticError& error) {
            complain(error.what(), first, "");
        }
    }
    substituteDerive(*spec, {{"a", "b [a]"}, {"x", ""}});
    (void)renderDerive(*spec, "  ");
    return 0;
}
