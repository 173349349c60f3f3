// Runs a target over files and folders of files, without libFuzzer: what fuzzers have found stays found.
// Prints each file before it is run, so that the last one is the culprit.

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <set>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

/// The file, or the files in the folder and below it; a folder that does not exist has none.
std::set<std::string> filesOf(const std::string& path) {
    std::set<std::string> files;
    if (fs::is_regular_file(path)) {
        files.insert(path);
    } else if (fs::is_directory(path)) {
        for (const auto& entry : fs::recursive_directory_iterator(path)) {
            if (entry.is_regular_file()) {
                files.insert(entry.path());
            }
        }
    }
    return files;
}

} // namespace

int main(int argc, char** argv) {
    std::size_t count = 0;
    for (int i = 1; i < argc; ++i) {
        for (const auto& path : filesOf(fs::absolute(argv[i]))) {
            (void)std::printf("%s\n", path.c_str());
            (void)std::fflush(stdout);
            std::ifstream file(path, std::ios::binary);
            const std::vector<char> bytes{std::istreambuf_iterator<char>(file), {}};
            (void)LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
            ++count;
        }
    }
    (void)std::printf("%zu inputs\n", count);
    return count > 0 ? 0 : 1;
}
