// Any bytes from the terminal of the selector: it ends when they end, with the cursor shown. What it writes
// goes to a folder of its own.

#include "fixtures/selector_sample.h"
#include "fixtures/temporary_directory.h"
#include "fuzz_input.h"
#include "support/descriptor.h"
#include "system/terminal.h"
#include "templates/selector/selector_dialogues.h"

#include <filesystem>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

namespace {

using namespace morquill;

/// A file without a name that holds the bytes, at its start.
Descriptor asInput(std::string_view bytes) {
    Descriptor file(::memfd_create("keys", MFD_CLOEXEC));
    if (!writeAll(file.get(), bytes) || ::lseek(file.get(), 0, SEEK_SET) != 0) {
        fuzz::fail("the input can be written", "");
    }
    return file;
}

/// A dialogue asks for the name of a file: it must not leave the folder.
std::string inFolder(std::string name) {
    for (char& c : name) {
        c = c == '/' ? '_' : c;
    }
    return name;
}

/// The folder that the selector writes to: the current one for the time of an input, empty again behind it.
/// The fuzzer has relative paths of its own.
class Folder {
  public:
    Folder() : before_(std::filesystem::current_path()) { std::filesystem::current_path(own().root()); }
    Folder(const Folder&) = delete;
    Folder& operator=(const Folder&) = delete;
    ~Folder() {
        std::filesystem::current_path(before_);
        for (const auto& entry : std::filesystem::directory_iterator(own().root())) {
            std::filesystem::remove(entry.path());
        }
    }

  private:
    static const TemporaryDirectory& own() {
        static const TemporaryDirectory directory;
        return directory;
    }

    std::filesystem::path before_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Folder folder;
    const auto keys = fuzz::textOf(data, size);
    const auto input = asInput(keys);
    std::string cursor;
    std::size_t screens = 0;
    templates::SelectorConsole console;
    console.print = [&cursor](std::string_view text) {
        if (text == system::hideCursor || text == system::showCursor) {
            cursor = text;
        }
    };
    console.clearScreen = [&screens] { ++screens; };
    console.readKey = [&input] { return system::readKey(input.get()); };
    console.readLine = [&input]() -> std::optional<std::string> {
        auto line = system::readLine(input.get());
        return line ? std::optional(inFolder(*std::move(line))) : std::nullopt;
    };
    for (const bool isLong : {false, true}) {
        screens = 0;
        if (::lseek(input.get(), 0, SEEK_SET) != 0) {
            fuzz::fail("the input can be read again", "");
        }
        templates::runSelectorLoop(isLong ? templates::longState(50) : templates::sampleState(), console);
        fuzz::require(cursor == system::showCursor, "the cursor is shown at the end", keys);
        fuzz::require(screens <= 2 * size + 2, "each screen is for a key", keys);
    }
    return 0;
}
