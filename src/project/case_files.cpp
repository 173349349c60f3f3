#include "project/case_files.h"

#include "console/logger.h"
#include "support/file.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/new_file.h"
#include "system/prompt.h"
#include "system/signal_guard.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <filesystem>
#include <optional>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

constexpr std::array<std::string_view, 6> geometryExtensions{".xyz", ".gjf", ".com", ".inp", ".log", ".gms"};
constexpr std::array<std::string_view, 2> taskFileExtensions{".mq", ".projmq"};

/// The regular files of a directory whose extension, in any case, is one of `extensions`, in ascending order;
/// nothing, after a message, when the directory cannot be read.
std::optional<std::vector<std::string>> listByExtension(const std::string& dir, const auto& extensions) {
    std::error_code error;
    std::vector<std::string> files;
    for (fs::directory_iterator entry(dir, error); !error && entry != fs::directory_iterator();
         entry.increment(error)) {
        std::string path = entry->path().string();
        const std::string extension = toLower(extensionOf(path));
        if (std::find(extensions.begin(), extensions.end(), extension) != extensions.end() &&
            isRegularFile(path)) {
            files.push_back(std::move(path));
        }
    }
    if (error) {
        console::logError("filesystem error: " + error.message());
        return std::nullopt;
    }
    std::sort(files.begin(), files.end());
    return files;
}

/// A one-based index as a position in a list of `count`.
std::optional<std::size_t> readChoice(std::string_view answer, std::size_t count) {
    const std::optional<int> number = system::readIndex(trim(answer));
    if (!number || *number < 1 || static_cast<std::size_t>(*number) > count) {
        return std::nullopt;
    }
    return static_cast<std::size_t>(*number) - 1;
}

/// A case directory in the making: unless it is kept, what was put into it goes again, and so does it.
class UnfinishedCase {
  public:
    UnfinishedCase(std::string dir, const std::string& geometryName)
        : dir_(std::move(dir)), geometry_(joinPath(dir_, geometryName)) {}
    UnfinishedCase(const UnfinishedCase&) = delete;
    UnfinishedCase& operator=(const UnfinishedCase&) = delete;
    ~UnfinishedCase() {
        if (hasGeometry_) {
            ::unlink(geometry_.c_str());
        }
        if (hasDirectory_) {
            ::rmdir(dir_.c_str()); // fails, rightly, when someone else has put something there
        }
    }

    [[nodiscard]] std::error_code makeWith(const std::string& geometryFile) {
        if (::mkdir(dir_.c_str(), 0777) != 0) {
            return {errno, std::system_category()};
        }
        hasDirectory_ = true;
        const std::error_code error = system::copyToNewFile(geometryFile, geometry_);
        hasGeometry_ = !error;
        return error;
    }
    void keep() noexcept { hasGeometry_ = hasDirectory_ = false; }

  private:
    std::string dir_;
    std::string geometry_;
    bool hasDirectory_ = false;
    bool hasGeometry_ = false;
};

} // namespace

std::vector<std::string> listGeometryFiles(const std::string& dir) {
    const auto files = listByExtension(dir, geometryExtensions);
    if (files && files->empty()) {
        console::logError("no geometry files were found (.xyz, .gjf, .com, .inp, .log, .gms)");
    }
    return files.value_or(std::vector<std::string>{});
}

std::string selectSourceTaskFile(const std::string& dir) {
    const auto files = listByExtension(dir, taskFileExtensions);
    if (!files) {
        return {};
    }
    if (files->empty()) {
        console::logError("no .mq or .projmq file was found");
        return {};
    }
    if (files->size() == 1) {
        return files->front();
    }
    console::logInfo("multiple .mq/.projmq files found:");
    for (std::size_t i = 0; i < files->size(); ++i) {
        console::logInfo(std::to_string(i + 1) + ". " + baseName((*files)[i]));
    }
    for (;;) {
        console::logPrompt("select a .mq/.projmq file by index: ");
        const std::optional<std::string> answer = system::readInputLine();
        if (answer) {
            if (const auto choice = readChoice(*answer, files->size())) {
                return (*files)[*choice];
            }
        }
        console::logError("invalid selection; try again");
        if (!answer) { // the end of input will not say anything else
            return {};
        }
    }
}

bool createCase(const std::string& geometryFile, const std::string& projectDir,
                const std::string& templateFile) {
    const std::string name = stemOf(geometryFile);
    const std::string target = joinPath(projectDir, name);
    if (isDirectory(target)) {
        console::logWarning("directory already exists: " + target);
        return false;
    }
    const std::string link = joinPath(target, name + ".mq");
    const std::string linkTarget = "../" + baseName(templateFile);
    const std::string stub = "# autogenerated by mqkit\n&INCLUDE " + linkTarget + "\n";

    const system::SignalGuard whole; // a case that was begun is whole before a signal ends the program
    UnfinishedCase unfinished(target, baseName(geometryFile));
    if (const std::error_code error = unfinished.makeWith(geometryFile)) {
        console::logError("failed to create task " + name + " - " + error.message());
        return false;
    }
    std::error_code linkError;
    if (::symlink(linkTarget.c_str(), link.c_str()) != 0) {
        linkError.assign(errno, std::system_category());
        if (const std::error_code error = system::writeNewFile(link, stub)) {
            console::logError("failed to create symlink: " + error.message());
            return false;
        }
    }
    unfinished.keep();
    if (linkError) {
        console::logWarning("symlink creation failed; using include stub instead: " + linkError.message());
    }
    console::logInfo("created task: " + name +
                     (linkError ? " (include-stub -> .projmq)" : " (symlinked to .projmq)"));
    return true;
}

} // namespace morquill::project
