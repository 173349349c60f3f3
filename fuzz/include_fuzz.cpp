// A task file with its neighbours: included task and YAML files, libraries, fragments, extra files.
// Everything that the parser does not accept must end in its own error; what it accepts must print.
//
// The input is a text for each file of `names`, divided by the byte 0x1f.

#include "support/file.h"
#include "support/text.h"
#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <unistd.h>

namespace {

using namespace morquill;

constexpr std::array<const char*, 8> names{"t.mq",   "a.mq",       "a.mqlib",  "b.mqlib",
                                           "a.yaml", "extra.yaml", "f.mqfrag", "extra.mq"};

/// The directory of this process, made on first use.
const std::string& directory() {
    static const std::string path = [] {
        const auto made =
            std::filesystem::temp_directory_path() / ("mqkit-fuzz-" + std::to_string(::getpid()));
        std::filesystem::create_directories(made);
        return made.string() + "/";
    }();
    return path;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto texts = splitOn({reinterpret_cast<const char*>(data), size}, '\x1f');
    for (std::size_t i = 0; i < names.size(); ++i) {
        const std::string path = directory() + names[i];
        if (i < texts.size() && !texts[i].empty()) {
            if (!writeTextFile(path, texts[i])) {
                std::abort();
            }
        } else {
            std::filesystem::remove(path);
        }
    }
    try {
        taskdsl::TaskParser parser({.legacyMultiSource = true});
        const auto document = parser.parseText(texts.front(), directory() + "t.mq");
        (void)renderCanonicalDocument(document, views::CanonicalView::sourceView);
        (void)renderCanonicalDocument(document, views::CanonicalView::matrixExpandedView);
    } catch (const std::runtime_error&) {
        // refused
    }
    return 0;
}
