#pragma once

#include <string>
#include <string_view>
#include <vector>

/// Merges templates as texts: their heads follow one another, and
/// blocks of one name become one where they do the same calculation.
namespace morquill::templates {

/// One variant of a block: its lines, the `$name` line first, and what it calculates.
struct MergedVariant {
    std::vector<std::string> lines;
    std::string source;   ///< value of the first `%source` line, empty without one
    std::string keywords; ///< value of the first `%keywords` line, empty without one
};

/// All variants of the blocks with one name, in order of appearance.
struct MergedGroup {
    std::string name;
    std::vector<MergedVariant> variants;
};

/// Makes a variant from the lines of a block.
[[nodiscard]] MergedVariant makeVariant(std::vector<std::string> lines);

/// True when both have the same source and the same keywords.
[[nodiscard]] bool sameCalculation(const MergedVariant& left, const MergedVariant& right);

/// Returns the lines of `base` together with what only `addition` has: directives that `base` lacks follow at
/// the end, and the commands of `%preprocess` and of `%process` are united so that common ones appear once.
[[nodiscard]] std::vector<std::string> foldLines(const std::vector<std::string>& base,
                                                 const std::vector<std::string>& addition);

/// Returns one task file made of several templates, in the order given. The second and later variants of a
/// block are called `name_2`, `name_3`; references to them are not changed.
[[nodiscard]] std::string mergeTemplateTexts(const std::vector<std::string_view>& texts);

} // namespace morquill::templates
