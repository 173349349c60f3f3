#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Templates are joined as texts: heads one behind the other, blocks of one name folded into one another
/// where they do the same calculation.
namespace morquill::templates {

/// One form of a block: its lines, the `$name` line first, and what it calculates.
struct MergedVariant {
    std::vector<std::string> lines;
    std::string source;   ///< value of the first `%source` line, empty without one
    std::string keywords; ///< value of the first `%keywords` line, empty without one
};

/// All forms of the blocks with one name, in order of appearance.
struct MergedGroup {
    std::string name;
    std::vector<MergedVariant> variants;
};

/// The variant that the lines of a block make.
[[nodiscard]] MergedVariant makeVariant(std::vector<std::string> lines);

/// True when both start from the same source with the same keywords.
[[nodiscard]] bool sameCalculation(const MergedVariant& left, const MergedVariant& right);

/// The lines of `base` with what `addition` has on top: directives that `base` lacks stand at the end, and
/// the commands of `%preprocess` and of `%process` are united so that common ones stand once.
[[nodiscard]] std::vector<std::string> foldLines(const std::vector<std::string>& base,
                                                 const std::vector<std::string>& addition);

/// One task file out of several templates, in the order given. The second and later variants of a block are
/// called `name_2`, `name_3`; references to them are not changed.
[[nodiscard]] std::string mergeTemplateTexts(const std::vector<std::string_view>& texts);

} // namespace morquill::templates
