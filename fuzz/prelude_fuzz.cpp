// Any bytes as the head of a task file: as one YAML section, and in front of a task, where what is read has
// to read back.

#include "document_law.h"
#include "support/text.h"
#include "taskdsl/generate/yaml_section.h"

#include <string>

namespace {

using namespace morquill;

void readSection(std::string_view text) {
    taskdsl::YamlSection section;
    try {
        section = taskdsl::readYamlSection(std::string(text), "a.yaml", 1);
    } catch (const taskdsl::DiagnosticError&) {
        return;
    }
    for (const auto& [name, items] : section.collections) {
        for (const auto& item : items) {
            fuzz::require(item.contains("index"), "an item of a collection has its number", text);
        }
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto text = fuzz::textOf(data, size);
    readSection(text);
    taskdsl::TaskDocument document;
    try {
        document = taskdsl::TaskParser().parseText(std::string(text) + "\n$a\n  %program script\n", "");
    } catch (const taskdsl::DiagnosticError&) {
        return 0;
    }
    fuzz::holdPrintedLaw(document);
    return 0;
}
