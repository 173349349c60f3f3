#include "app/dispatch.h"

namespace {

/// The version, for people: no option prints it, `strings` and `what` find it in the file.
[[gnu::used]] constexpr char ident[] = "@(#)" MQKIT_IDENT;

} // namespace

int main(int argc, char** argv) {
    return morquill::app::runInSession(argc, argv, morquill::app::dispatchCommand);
}
