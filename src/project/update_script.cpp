#include "project/update_script.h"
#include "project/case_block.h"

#include "project/cases/selection.h"
#include "project/phrases.h"
#include "project/update_script_text.h"
#include "support/paths.h"
#include "support/text.h"
#include "system/new_file.h"
#include "system/signal_guard.h"

#include <cstdio>
#include <filesystem>
#include <string_view>

#include <sys/stat.h>
#include <unistd.h>

namespace morquill::project {

namespace fs = std::filesystem;

namespace {

// The script is a file of its own; two marks in it are filled in.
constexpr std::string_view selectedMark = "@selected@";
constexpr std::string_view callsMark = "# @calls@\n";
constexpr auto selectedAt = comdRunnerText.find(selectedMark);
constexpr auto callsAt = comdRunnerText.find(callsMark);
static_assert(selectedAt < callsAt && callsAt != std::string_view::npos);

std::string relativeTo(const std::string& root, const std::string& path) {
    const auto relative = fs::path(path).lexically_relative(root);
    return relative.empty() ? path : relative.generic_string();
}

} // namespace

std::string formatComdRunnerScript(const std::string& root, const std::vector<std::string>& caseDirs,
                                   const std::vector<std::string>& selected) {
    std::string text(comdRunnerText.substr(0, selectedAt));
    text += formatSelection(selected);
    constexpr auto afterSelected = selectedAt + selectedMark.size();
    text += comdRunnerText.substr(afterSelected, callsAt - afterSelected);
    forEachBlock(caseDirs, selected, [&](const CaseBlock& block) {
        text += "run_comd " + shellQuote(block.label) + " " + shellQuote(relativeTo(root, block.directory)) +
                "\n";
    });
    return text.append(comdRunnerText.substr(callsAt + callsMark.size()));
}

std::string comdRunnerScriptPath(const std::string& root) {
    return joinPath(root, "mqkit_update_comd.sh");
}

bool writeComdRunnerScript(const std::string& root, const std::vector<std::string>& caseDirs,
                           const std::vector<std::string>& selected) {
    const auto outPath = comdRunnerScriptPath(root);
    const auto text = formatComdRunnerScript(root, caseDirs, selected);
    // A new file takes the place of what is there: writing over that would go through a link, into a file
    // with further names, or wait for the reader of a pipe, and the older script stays until the new one is
    // whole.
    const auto fresh = outPath + ".new";
    const system::SignalGuard whole;
    (void)::unlink(fresh.c_str()); // of a run that was killed
    if (system::writeNewFile(fresh, text)) {
        return false;
    }
    struct stat info {};
    if (::stat(fresh.c_str(), &info) == 0) {
        // A failure does no harm: `bash mqkit_update_comd.sh` works without the permission.
        (void)::chmod(fresh.c_str(), (info.st_mode & 07777) | 0755);
    }
    if (::rename(fresh.c_str(), outPath.c_str()) == 0) {
        return true;
    }
    (void)::unlink(fresh.c_str());
    return false;
}

} // namespace morquill::project
