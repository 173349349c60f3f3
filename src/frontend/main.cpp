#include "frontend/dispatch.h"

int main(int argc, char** argv) {
    return morquill::frontend::runInSession(argc, argv, morquill::frontend::dispatchCommand);
}
