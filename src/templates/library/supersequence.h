#pragma once

#include <string_view>
#include <vector>

namespace morquill::templates {

/// Returns the shortest list of lines that contains the lines of `first` and those
/// of `second`, each in their own order. Where several are equally short, lines of
/// `first` come before lines of `second`. The views are those of the arguments.
///
/// For n and m lines between common ones at both ends, it takes
/// about n*m/64 word operations and sqrt(n)*m/4 bytes of memory.
[[nodiscard]] std::vector<std::string_view>
shortestCommonSupersequence(const std::vector<std::string_view>& first,
                            const std::vector<std::string_view>& second);

} // namespace morquill::templates
