#include "frontend/not_built.h"

#include "frontend/console.h"

#include <string>

namespace morquill::frontend {

void printNotBuilt(std::string_view command) {
    writeOut("[mqkit] '" + std::string(command) + "' is not part of this build yet\n");
}

int refuseNotBuilt(std::string_view command) {
    writeErr("[mqkit][ERROR] '" + std::string(command) + "' is not part of this build yet\n");
    return 1;
}

} // namespace morquill::frontend
