// Templates are any files that lie in a directory: whatever they contain, they merge. What comes of one
// template that parses does so as well, and so does what comes of several. A record separator (0x1e) in the
// input stands between two templates.

#include "fuzz_input.h"
#include "support/text.h"
#include "taskdsl/base/diagnostic.h"
#include "taskdsl/parser/task_parser.h"
#include "templates/library/define_section.h"
#include "templates/library/merge.h"
#include "templates/library/supersequence.h"
#include "templates/library/template_text.h"
#include "templates/library/variable_template.h"

#include <algorithm>
#include <optional>
#include <string>
#include <vector>

namespace {

using namespace morquill;

/// True when the lines of `part` are in `whole` in their order.
bool isSubsequence(const std::vector<std::string_view>& part, const std::vector<std::string_view>& whole) {
    std::size_t next = 0;
    for (const auto line : whole) {
        if (next < part.size() && part[next] == line) {
            ++next;
        }
    }
    return next == part.size();
}

/// Why a text does not parse; nothing when it does.
std::optional<std::string> faultOf(std::string_view text) {
    try {
        (void)taskdsl::TaskParser().parseText(text, "");
        return std::nullopt;
    } catch (const taskdsl::DiagnosticError& error) {
        return error.text();
    }
}

/// True for a template of task blocks: blocks of the file (loops, includes, plots, derives) have no place of
/// their own in a merged file.
bool isPlain(std::string_view text) {
    const auto lines = splitLines(text);
    return std::none_of(lines.begin(), lines.end(), [](std::string_view line) {
        const auto statement = trim(line);
        return statement.starts_with('@') || statement.starts_with('&');
    });
}

/// The heads of all templates as they are merged.
std::string mergedHeads(const std::vector<std::string_view>& texts) {
    std::vector<std::string> heads;
    for (const auto text : texts) {
        heads.push_back(join(templates::splitTemplateBlocks(text).headLines, "\n"));
    }
    return templates::mergeTemplateTexts({heads.begin(), heads.end()});
}

/// A merged file reads when the templates do and their heads can follow one another.
void holdParse(const std::vector<std::string_view>& texts, const std::string& merged) {
    const bool isReadable = std::all_of(texts.begin(), texts.end(), isPlain) &&
                            std::none_of(texts.begin(), texts.end(), faultOf) && !faultOf(mergedHeads(texts));
    if (const auto fault = faultOf(merged); fault && isReadable) {
        fuzz::fail("what is merged of templates that parse does so: " + *fault, merged);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::textOf(data, size);
    const auto pieces = splitOn(input, '\x1e');
    const std::vector<std::string_view> texts(pieces.begin(), pieces.end());

    const std::string merged = templates::mergeTemplateTexts(texts);
    holdParse(texts, merged);
    const std::string whole = templates::withAutorun(merged);
    fuzz::require(templates::withAutorun(whole) == whole, "the setting is put in once", whole);
    (void)faultOf(whole);

    const auto names = templates::scanPlaceholders(merged, templates::BuiltIns::drop);
    const auto values = templates::parseVariableTemplate(texts.back(), "default").values;
    const auto section = templates::buildDefineSection(names, values);
    (void)faultOf(templates::replaceDefineSection(whole, section));

    const auto first = splitLines(texts.front());
    const auto last = splitLines(texts.back());
    const auto united = templates::shortestCommonSupersequence(first, last);
    fuzz::require(united.size() <= first.size() + last.size(), "no line is there too often", input);
    fuzz::require(isSubsequence(first, united) && isSubsequence(last, united), "no line is lost", input);
    return 0;
}
