#include "app/dispatch.h"
#include "console/session.h"

int main(int argc, char** argv) {
    return morquill::console::runInSession("mqkit", argc, argv, morquill::app::dispatchCommand);
}
