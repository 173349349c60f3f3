#pragma once

#include <string_view>

namespace morquill::templates {

/// Returns a water molecule: atom count, charge and multiplicity, then elements and positions in angstrom.
[[nodiscard]] std::string_view sampleGeometry() noexcept;
/// Returns a task file that shows typical use of the language.
[[nodiscard]] std::string_view sampleTaskFile() noexcept;

/// Writes both to the directory "test" below the current one, over
/// existing files, and reports them. Returns the exit status.
[[nodiscard]] int createSampleWorkspace();

} // namespace morquill::templates
