#pragma once

#include <string>
#include <vector>

/// The pieces that `init` and `add` make a project from. Every function reports through the log.
namespace morquill::project {

/// The regular files in a directory that hold a geometry, by their extension in any case, in ascending order;
/// empty after a message when there is none.
[[nodiscard]] std::vector<std::string> listGeometryFiles(const std::string& dir);

/// The `.mq` or `.projmq` file of a directory, asked for when there are several; empty after a message.
[[nodiscard]] std::string selectSourceTaskFile(const std::string& dir);

/// Makes the case directory of one geometry file: the directory, a copy of the geometry, and `<name>.mq` as a
/// link to the template or, where links cannot be made, as a file that includes it. An existing directory is
/// left alone. True on success; after a failure nothing of the case is left, and a signal that asks the
/// program to end waits until the case is whole.
[[nodiscard]] bool createCase(const std::string& geometryFile, const std::string& projectDir,
                              const std::string& templateFile);

} // namespace morquill::project
