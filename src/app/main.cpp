#include "app/dispatch.h"

int main(int argc, char** argv) {
    return morquill::app::runInSession(argc, argv, morquill::app::dispatchCommand);
}
