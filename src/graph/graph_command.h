#pragma once

/// The program `mqkit-graph`: a task file as a picture.
namespace morquill::graph {

/// Reads the words after the program, reads the task file and writes its graph to standard output. Returns
/// the exit status: 0 on success and for an explicit help, 1 for a refused command line, a fault of the file
/// or a Graphviz that is missing or fails.
int runGraph(int argc, char** argv);

} // namespace morquill::graph
