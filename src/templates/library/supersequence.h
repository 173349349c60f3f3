#pragma once

#include <string_view>
#include <vector>

namespace morquill::templates {

/// The shortest list of lines that holds the lines of `first` and those of `second`, each in their own order.
/// Where several are equally short, lines of `first` come before lines of `second`. The views point into the
/// arguments. For n and m lines: time n*m/64 word operations, memory about sqrt(n)*m/4 bytes, both on what is
/// left when common lines at both ends are cut.
[[nodiscard]] std::vector<std::string_view>
shortestCommonSupersequence(const std::vector<std::string_view>& first,
                            const std::vector<std::string_view>& second);

} // namespace morquill::templates
