// Any bytes as a template and as a file of variables: no exception, no line is lost, and a change that is
// made twice is made once.

#include "fuzz_input.h"
#include "support/text.h"
#include "templates/library/define_section.h"
#include "templates/library/template_text.h"
#include "templates/library/variable_template.h"

#include <string>

namespace {

using namespace morquill;

void holdHead(std::string_view text) {
    const auto whole = templates::withAutorun(text);
    fuzz::require(templates::withAutorun(whole) == whole, "the setting is put in once", whole);
    const auto before = templates::splitTemplateBlocks(text);
    const auto after = templates::splitTemplateBlocks(whole);
    fuzz::require(before.blocks == after.blocks && before.blockOrder == after.blockOrder,
                  "the setting changes the head alone", whole);
}

void holdParts(std::string_view text) {
    const auto parts = templates::splitTemplateBlocks(text);
    std::size_t lines = parts.headLines.size();
    for (const auto& [name, block] : parts.blocks) {
        fuzz::require(!name.empty() && !block.empty(), "a block has a name and a line", text);
        lines += block.size();
    }
    fuzz::require(parts.blocks.size() == parts.blockOrder.size(), "each block has its place", text);
    fuzz::require(lines <= splitOn(text, '\n').size(), "no line is in two places", text);
}

void holdDefines(std::string_view text) {
    const auto values = templates::parseVariableTemplate(text, "default").values;
    const auto names = templates::scanPlaceholders(text, templates::BuiltIns::drop);
    for (const auto& name : names) {
        fuzz::require(text.find("[" + name + "]") != std::string_view::npos, "a placeholder is in the text",
                      text);
    }
    fuzz::require(templates::buildDefineLines(names, values).size() == names.size(),
                  "each name has its entry", text);
    const std::string section = "define:\n  a: 1";
    const auto once = templates::replaceDefineSection(text, section);
    fuzz::require(once.find(section) != std::string::npos, "the section is in the text", once);
    fuzz::require(templates::replaceDefineSection(once, section).size() <= once.size() + 1,
                  "a section is replaced, not added", once);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    holdHead(text);
    holdParts(text);
    holdDefines(text);
    return 0;
}
