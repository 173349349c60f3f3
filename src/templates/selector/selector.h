#pragma once

namespace morquill::templates {

/// Runs the full-screen template selector on standard input and output. Returns the exit status: 1 when there
/// is no template at all, otherwise 0.
[[nodiscard]] int runSelector();

} // namespace morquill::templates
