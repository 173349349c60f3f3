#include "project/case_block.h"

#include "support/paths.h"

#include <utility>

namespace morquill::project {

CaseBlock blockOf(const std::string& caseDir, const std::string& task) {
    std::string caseName = baseName(caseDir);
    std::string label = caseName + " / $" + task;
    return {std::move(caseName), task, joinPath(caseDir, task), std::move(label)};
}

} // namespace morquill::project
