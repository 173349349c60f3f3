// Bytes -> parse -> render -> parse -> render: the second text equals the first. Everything that is not a
// text the parser accepts must end in its own error.

#include "taskdsl/parser/task_parser.h"
#include "views/canonical_writer.h"

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <stdexcept>
#include <string>

namespace {

using namespace morquill;

std::string canonical(const std::string& text) {
    taskdsl::TaskParser parser(false, [](const std::string&) {});
    return renderCanonicalDocument(parser.parseText(text, ""), views::CanonicalView::sourceView);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string once;
    try {
        once = canonical(std::string(reinterpret_cast<const char*>(data), size));
    } catch (const std::runtime_error&) {
        return 0;
    }
    std::string twice;
    try {
        twice = canonical(once);
    } catch (const std::runtime_error& error) {
        std::fprintf(stderr, "own output is refused: %s\n%s\n", error.what(), once.c_str());
        std::abort();
    }
    if (twice != once) {
        std::fprintf(stderr, "not stable:\n%s\n---\n%s\n", once.c_str(), twice.c_str());
        std::abort();
    }
    return 0;
}
