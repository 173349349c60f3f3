#include "taskdsl/generate/define_block.h"

#include "support/text.h"
#include "taskdsl/base/canonical_scalar.h"
#include "taskdsl/base/diagnostic.h"

#include <algorithm>
#include <array>
#include <utility>

namespace morquill::taskdsl {

namespace {

/// The runtime placeholders of `%source`.
constexpr std::array<std::string_view, 7> reservedNames{"geom", "xyz_file", "charge",    "spin",
                                                        "uhf",  "source",   "atom_count"};

bool isCoveredBy(std::string_view name, std::string_view key) noexcept {
    if (!key.starts_with(name)) {
        return false;
    }
    const auto rest = key.substr(name.size());
    return rest.empty() || rest.front() == '.' || std::all_of(rest.begin(), rest.end(), isDigit);
}

} // namespace

bool isReservedKey(std::string_view key) noexcept {
    return std::any_of(reservedNames.begin(), reservedNames.end(),
                       [key](std::string_view name) { return isCoveredBy(name, key); });
}

void requireFreeDefineKey(std::string_view key) {
    if (isReservedKey(key)) {
        throw DiagnosticError("define key '" + std::string(key) +
                              "' is reserved for runtime %source placeholders");
    }
}

TakenLines<ValueMap> parseDefineBlock(const std::vector<SourceLine>& lines, std::size_t start) {
    ValueMap defines;
    std::size_t next = start;
    for (; next < lines.size(); ++next) {
        const auto text = lines[next].clean();
        if (text.empty()) {
            continue;
        }
        if (!lines[next].text().starts_with("  ") || lines[next].kind() == LineKind::taskHeader) {
            break;
        }
        const auto colon = text.find(':');
        const auto key = trim(text.substr(0, colon));
        if (colon != std::string_view::npos && !key.empty()) {
            defines.insert_or_assign(std::string(key), readScalar(text.substr(colon + 1)));
        }
    }
    return {std::move(defines), next};
}

void mergeDefines(TaskDocument& document, const ValueMap& defines, NameClash clash) {
    for (const auto& [key, value] : defines) {
        requireFreeDefineKey(key);
        if (clash == NameClash::takeNew) {
            document.defines.insert_or_assign(key, value);
        } else {
            document.defines.try_emplace(key, value);
        }
    }
}

} // namespace morquill::taskdsl
