#pragma once

namespace morquill::templates {

/// The full-screen template selector on standard input and output. Gives the exit status: 1 when there is no
/// template at all, otherwise 0.
[[nodiscard]] int runSelector();

} // namespace morquill::templates
