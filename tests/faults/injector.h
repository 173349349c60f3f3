#pragma once

/// What the fault injector and the tests that use it agree on.
namespace faults {

/// Kinds of calls that are counted together.
enum class CallClass {
    none,
    any,  ///< all but memory
    open, ///< files and directories, for reading and for writing
    read, ///< of files, directories and links
    stat,
    write,
    room, ///< sizes and places in a file
    close,
    name, ///< renaming and linking
    remove,
    mkdir,
    mode,  ///< permissions and owners
    fork,  ///< whatever comes before the child is there
    start, ///< what the child does to become another program
    wait,
    terminal, ///< and standard input
    output,   ///< of the standard output's stream
    memory,
};

constexpr int classCount = 18;
/// By class: its word in a plan.
constexpr const char* classNames[classCount] = {"none", "any",   "open", "read",     "stat",   "write",
                                                "room", "close", "name", "remove",   "mkdir",  "mode",
                                                "fork", "start", "wait", "terminal", "output", "memory"};

/// What happens to the planned call.
enum class Kind {
    error,     ///< it fails with the error
    forGood,   ///< it and all after it of its class fail with the error
    shortened, ///< it moves half of the bytes
    full,      ///< it moves half of the bytes, and the next write to the same file finds no room
    signal,    ///< the signal comes before it
};

/// What the injector leaves behind.
struct Report {
    int reached;            ///< 1 when the planned call was made
    char call[60];          ///< its name
    int counts[classCount]; ///< by class: calls made
};

} // namespace faults
