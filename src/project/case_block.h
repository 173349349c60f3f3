#pragma once

#include <string>
#include <vector>

namespace morquill::project {

/// A task block in one case, whether or not its directory exists.
struct CaseBlock {
    std::string caseName;
    std::string task;
    std::string directory; ///< `<case directory>/<task>`
    std::string label;     ///< "<case> / $<task>": how messages name it
};

/// The block of a task in a case.
[[nodiscard]] CaseBlock blockOf(const std::string& caseDir, const std::string& task);

/// Calls `act` with each selected block, case by case.
template <class Act>
void forEachBlock(const std::vector<std::string>& caseDirs, const std::vector<std::string>& selected,
                  const Act& act) {
    for (const auto& caseDir : caseDirs) {
        for (const auto& task : selected) {
            act(blockOf(caseDir, task));
        }
    }
}

} // namespace morquill::project
