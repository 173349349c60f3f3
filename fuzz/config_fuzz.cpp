// Any bytes as morquill.conf: no exception, trimmed keys, and what is in the file twice is in it once.

#include "console/runtime_config.h"
#include "fuzz_input.h"
#include "support/text.h"

#include <cstdlib>
#include <string>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace morquill;
    static const bool hasHome = ::setenv("HOME", "/home/ada", 1) == 0;
    const std::string text(skipByteOrderMark(fuzz::textOf(data, size)));
    const auto config = console::parseConfigText(text, "/conf", "/work");
    fuzz::require(hasHome && console::parseConfigText(text + "\n" + text, "/conf", "/work") == config,
                  "a line that is repeated changes nothing", text);
    for (const auto& [key, value] : config) {
        fuzz::require(trim(key) == key, "a key has no blanks around it", text);
        (void)console::getConfigValue(config, key, "/work");
        for (const auto& path : console::splitPathList(value, "/work")) {
            fuzz::require(!path.empty(), "a list has no empty path", text);
        }
    }
    return 0;
}
