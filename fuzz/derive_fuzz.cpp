#include "taskdsl/base/diagnostic.h"
#include "taskdsl/derive/derive_output.h"
#include "taskdsl/derive/derive_parser.h"
#include "taskdsl/derive/derive_substitute.h"
#include "taskdsl/derive/task_references.h"

#include "fixtures/derive_without_spans.h"
#include "fuzz_input.h"
#include "support/text.h"

#include <optional>
#include <string>

/// The input is the text of a `@derive` block, the first line its header. A block that is read has to print,
/// and what is printed has to read back as the same records or to be told as lost, never both. The same holds
/// once values have been put in.
namespace {

using namespace morquill;
using namespace morquill::taskdsl;
using namespace morquill::taskdsl::derive;

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
    fuzz::fail(what, first + "--- then\n" + second);
}

std::optional<DeriveSpec> tryParse(const CapturedBlock& block, std::string& refusal) {
    try {
        return parseDerive(block);
    } catch (const DiagnosticError& error) {
        refusal = error.what();
        return std::nullopt;
    }
}

void checkReadBack(const DeriveSpec& spec) {
    std::string warnings;
    const std::string text =
        renderDerive(spec, "", [&](const std::string& warning) { warnings += warning + '\n'; });
    std::string refusal;
    const auto again = tryParse(capture(bodyOf(text)), refusal);
    const bool equal = again && withoutSpans(*again) == withoutSpans(spec);
    if (equal != warnings.empty()) {
        complain(equal ? "told as lost, but read back" : "lost in silence", text,
                 warnings + refusal + (again ? renderDerive(*again, "") : ""));
    }
    if (equal && renderDerive(*again, "") != text) {
        complain("printed differently", text, renderDerive(*again, ""));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    std::string refusal;
    auto spec = tryParse(capture(text), refusal);
    if (!spec) {
        return 0;
    }
    checkReadBack(*spec);
    (void)collectDeriveTaskReferences(*spec);
    substituteDerive(*spec, {{"a", "b [a]"}, {"x", ""}, {"t", "as"}, {"n", "1"}});
    checkReadBack(*spec);
    return 0;
}
