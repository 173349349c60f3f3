// Templates are any files that lie in a directory: whatever they hold, they merge, and what comes out can be
// given to the parser. A record separator (0x1e) in the input stands between two templates.

#include "support/text.h"
#include "taskdsl/parser/task_parser.h"
#include "templates/library/define_section.h"
#include "templates/library/merge.h"
#include "templates/library/supersequence.h"
#include "templates/library/template_text.h"
#include "templates/library/variable_template.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <stdexcept>

namespace {

using namespace morquill;

void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

/// True when the lines of `part` stand in `whole` in their order.
bool isSubsequence(const std::vector<std::string_view>& part, const std::vector<std::string_view>& whole) {
    std::size_t next = 0;
    for (const auto line : whole) {
        if (next < part.size() && part[next] == line) {
            ++next;
        }
    }
    return next == part.size();
}

void parse(const std::string& text) {
    try {
        (void)taskdsl::TaskParser().parseText(text, "");
    } catch (const std::runtime_error&) {
        // A fault of the input, told as such.
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): bytes are text here
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    const auto pieces = splitOn(input, '\x1e');
    const std::vector<std::string_view> texts(pieces.begin(), pieces.end());

    const std::string merged = templates::mergeTemplateTexts(texts);
    const std::string whole = templates::withAutorun(merged);
    require(templates::withAutorun(whole) == whole);
    parse(whole);

    const auto names = templates::scanPlaceholders(merged, templates::BuiltIns::drop);
    const auto values = templates::parseVariableTemplate(texts.back(), "default").values;
    const auto section = templates::buildDefineSection(names, values);
    parse(templates::replaceDefineSection(whole, section));

    const auto first = splitLines(texts.front());
    const auto last = splitLines(texts.back());
    const auto united = templates::shortestCommonSupersequence(first, last);
    require(united.size() <= first.size() + last.size());
    require(isSubsequence(first, united) && isSubsequence(last, united));
    return 0;
}
