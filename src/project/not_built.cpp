#include "project/prompt.h"
#include "project/workflows.h"

/// Stand-ins for the workflows that this build does not have yet.
namespace morquill::project {

namespace {

int refuseNotBuilt(std::string_view command) {
    printErrorLine("[mqkit][ERROR] 'project " + std::string(command) + "' is not part of this build yet");
    return 1;
}

} // namespace

bool runProjectUpdate(const std::string&, const std::vector<std::string>&, const UpdateOptions&) {
    return refuseNotBuilt("update") == 0;
}

bool runProjectRebuild(const std::string&, const std::vector<std::string>&, const RebuildOptions&) {
    return refuseNotBuilt("rebuild") == 0;
}

int runProjectExec(const ProjectOptions&, std::string_view) {
    return refuseNotBuilt("exec");
}

int runProjectCollect(const ProjectOptions&, std::string_view) {
    return refuseNotBuilt("collect");
}

} // namespace morquill::project
