// A task file with its neighbours: included task and YAML files, libraries, fragments, extra files. What is
// printed contains all of them, so it reads back alone.
//
// The input is a text for each file of `names`, divided by the byte 0x1f.

#include "document_law.h"
#include "fixtures/temporary_directory.h"
#include "support/text.h"

#include <array>
#include <filesystem>
#include <string>

namespace {

using namespace morquill;

constexpr std::array<const char*, 8> names{"t.mq",   "a.mq",       "a.mqlib",  "b.mqlib",
                                           "a.yaml", "extra.yaml", "f.mqfrag", "extra.mq"};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const TemporaryDirectory directory;
    const auto texts = splitOn(fuzz::textOf(data, size), '\x1f');
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i < texts.size() && !texts[i].empty()) {
            (void)directory.write(names[i], texts[i]);
        } else {
            std::filesystem::remove(directory.path(names[i]));
        }
    }
    taskdsl::TaskDocument document;
    try {
        document = taskdsl::TaskParser({.legacyMultiSource = true})
                       .parseText(texts.front(), directory.path(names.front()));
    } catch (const taskdsl::DiagnosticError&) {
        return 0;
    }
    fuzz::holdPrintedLaw(document);
    return 0;
}
