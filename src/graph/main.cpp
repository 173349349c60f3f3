#include "console/session.h"
#include "graph/graph_command.h"

int main(int argc, char** argv) {
    return morquill::console::runInSession("mqkit-graph", argc, argv, morquill::graph::runGraph);
}
