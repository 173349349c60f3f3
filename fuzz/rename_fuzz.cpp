// A block that is renamed in any text. The input is old name, new name, case name and text, divided by the
// byte 0x1f; the result is that of the rules applied in the plainest way.

#include "fuzz_input.h"
#include "project/rename/block_name.h"
#include "project/rename/rename_files.h"
#include "project/rename/word_replace.h"
#include "support/text.h"

#include <array>
#include <string>
#include <vector>

namespace {

using namespace morquill;

/// A text in which every byte knows whether it was put in.
struct MarkedText {
    std::string text;
    std::vector<bool> putIn;
};

enum class Bounds { any, word };

bool isPlain(const MarkedText& marked, std::size_t begin, std::size_t length) {
    for (std::size_t i = begin; i < begin + length; ++i) {
        if (marked.putIn[i]) {
            return false;
        }
    }
    return true;
}

/// Replaces left to right, one byte at a time.
MarkedText replaced(const MarkedText& before, std::string_view from, std::string_view to, Bounds bounds) {
    MarkedText after;
    const auto& text = before.text;
    const auto isWordAt = [&](std::size_t i) { return i < text.size() && isWordChar(text[i]); };
    std::size_t taken = 0; // a word takes the sign behind it along
    for (std::size_t i = 0; i < text.size();) {
        const bool fits =
            !from.empty() && text.compare(i, from.size(), from) == 0 && isPlain(before, i, from.size());
        const bool opens = i == 0 || (i > taken && !isWordAt(i - 1));
        if (fits && (bounds == Bounds::any || (opens && !isWordAt(i + from.size())))) {
            after.text += to;
            after.putIn.insert(after.putIn.end(), to.size(), true);
            i += from.size();
            taken = i + 1;
            continue;
        }
        after.text += text[i];
        after.putIn.push_back(before.putIn[i]);
        ++i;
    }
    return after;
}

std::string expected(const std::string& text, const project::RenamedBlock& block,
                     const std::string& caseName) {
    MarkedText marked{text, std::vector<bool>(text.size(), false)};
    const auto& [from, to] = block;
    if (!caseName.empty()) {
        marked = replaced(marked, from + "_" + caseName, to + "_" + caseName, Bounds::any);
    }
    marked = replaced(marked, from + "_[", to + "_[", Bounds::any);
    return replaced(marked, from, to, Bounds::word).text;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto input = fuzz::textOf(data, size);
    std::array<std::string, 4> parts;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < parts.size() && begin <= input.size(); ++i) {
        const auto end = i + 1 < parts.size() ? input.find('\x1f', begin) : std::string_view::npos;
        parts[i] = input.substr(begin, end - begin);
        begin = end == std::string_view::npos ? input.size() + 1 : end + 1;
    }
    const auto& [oldName, newName, caseName, text] = parts;
    (void)project::blockNameFault(newName);
    if (oldName.empty()) {
        return 0; // no task has an empty name
    }
    fuzz::require(project::containsText(text, oldName) == (text.find(oldName) != std::string::npos),
                  "a text is found where it is", input);
    const project::RenamedBlock block{oldName, newName};
    const auto wanted = expected(text, block, caseName);
    const auto result = project::renamedText(text, block, caseName);
    fuzz::require(result.value_or(text) == wanted, "the rules are those of the plain walk", wanted);
    fuzz::require(result.has_value() == (wanted != text), "a text that stays is reported as such", input);
    return 0;
}
