#pragma once

#include <string_view>

namespace morquill::templates {

/// A water molecule: atom count, charge and multiplicity, then element and position in angstrom.
[[nodiscard]] std::string_view sampleGeometry() noexcept;
/// A task file that shows the idiom of the language.
[[nodiscard]] std::string_view sampleTaskFile() noexcept;

/// Writes both into the directory "test" of the current one, over what is there, and reports it. Returns
/// the exit status.
[[nodiscard]] int createSampleWorkspace();

} // namespace morquill::templates
