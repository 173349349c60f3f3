#pragma once

#include "support/file.h"

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <string_view>

namespace morquill::taskdsl {

/// A directory of its own for one test, removed at its end.
class TemporaryDirectory {
  public:
    TemporaryDirectory() {
        std::string name = (std::filesystem::temp_directory_path() / "mqkit-test-XXXXXX").string();
        if (::mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        // The path of messages and chains: without symbolic links.
        root = std::filesystem::canonical(name).string();
    }
    TemporaryDirectory(const TemporaryDirectory&) = delete;
    TemporaryDirectory& operator=(const TemporaryDirectory&) = delete;
    ~TemporaryDirectory() {
        std::error_code ignored;
        std::filesystem::remove_all(root, ignored);
    }

    /// The path of a file in the directory.
    [[nodiscard]] std::string path(std::string_view name) const { return root + "/" + std::string(name); }

    /// Writes a file and gives its path; directories on the way are made.
    std::string write(std::string_view name, std::string_view text) const {
        const auto file = path(name);
        std::filesystem::create_directories(std::filesystem::path(file).parent_path());
        if (!writeTextFile(file, text)) {
            throw std::runtime_error("cannot write " + file);
        }
        return file;
    }

  private:
    std::string root;
};

} // namespace morquill::taskdsl
