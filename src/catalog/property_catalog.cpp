#include "catalog/property_catalog.h"

#include "catalog/property_rows.h"
#include "support/text.h"

#include <algorithm>

namespace morquill {

namespace {

using catalog_rows::rows;

/// One name and the row it reaches.
struct IndexEntry {
    std::string_view name;
    std::uint16_t row = 0;

    friend constexpr auto operator<=>(const IndexEntry&, const IndexEntry&) = default;
};

constexpr std::size_t nameCount = [] {
    std::size_t count = 0;
    for (const auto& row : rows) {
        count += 1 + row.aliases.size();
    }
    return count;
}();

/// All names in byte order; a name of two rows stands with the earlier row first, which is the one that
/// counts.
constexpr std::array<IndexEntry, nameCount> nameIndex = [] {
    std::array<IndexEntry, nameCount> index{};
    std::size_t next = 0;
    for (std::uint16_t i = 0; i < std::size(rows); ++i) {
        index[next++] = {rows[i].canonical, i};
        for (const auto alias : rows[i].aliases) {
            index[next++] = {alias, i};
        }
    }
    std::sort(index.begin(), index.end());
    return index;
}();

constexpr std::size_t longestName = [] {
    std::size_t longest = 0;
    for (const auto& entry : nameIndex) {
        longest = std::max(longest, entry.name.size());
    }
    return longest;
}();

// The index compares names as they stand in the table, so the table has to be normalised.
static_assert(std::all_of(nameIndex.begin(), nameIndex.end(), [](const IndexEntry& entry) {
    return !entry.name.empty() && std::all_of(entry.name.begin(), entry.name.end(),
                                              [](char c) { return isKeyChar(c) && lowerChar(c) == c; });
}));

constexpr std::string_view valueKindNames[] = {"scalar",      "series",  "text_scalar",
                                               "text_series", "vector3", "vector3_series"};

constexpr std::string_view quantityClassNames[] = {"unknown",
                                                   "dimensionless",
                                                   "energy",
                                                   "force",
                                                   "length",
                                                   "frequency",
                                                   "spectral_coordinate",
                                                   "angle",
                                                   "step",
                                                   "temperature",
                                                   "pressure",
                                                   "mass",
                                                   "force_constant",
                                                   "spectral_intensity",
                                                   "raman_activity",
                                                   "dipole_moment",
                                                   "entropy",
                                                   "heat_capacity"};

constexpr std::string_view recordTypeNames[] = {"none",
                                                "job",
                                                "step",
                                                "atom",
                                                "hessian_element",
                                                "vibrational_mode",
                                                "vibronic_transition",
                                                "vibronic_spectrum_point",
                                                "duschinsky_element",
                                                "excited_state",
                                                "orbital",
                                                "geometry_frame",
                                                "scan_point",
                                                "irc_point",
                                                "convergence_criterion",
                                                "spin_orbit_coupling_element"};

struct CapabilityName {
    bool PropertyCapabilities::*flag;
    std::string_view name;
};

/// In the order in which capabilities are tested.
constexpr CapabilityName capabilityNames[] = {
    {&PropertyCapabilities::gradient, "gradient"},
    {&PropertyCapabilities::hessian, "hessian"},
    {&PropertyCapabilities::vibrations, "vibrations"},
    {&PropertyCapabilities::excitedStates, "excited_states"},
    {&PropertyCapabilities::spinOrbit, "spin_orbit"},
    {&PropertyCapabilities::orbitals, "orbitals"},
    {&PropertyCapabilities::dipole, "dipole"},
    {&PropertyCapabilities::atomicCharges, "atomic_charges"},
};

template <class Enum, std::size_t N>
std::string_view nameOf(const std::string_view (&names)[N], Enum value) noexcept {
    const auto index = static_cast<std::size_t>(value);
    return index < N ? names[index] : names[0];
}

} // namespace

std::string_view propertyCatalogId() noexcept {
    return "morq.qc.property_catalog.v9";
}

std::span<const PropertyCatalogRow> propertyCatalog() noexcept {
    return rows;
}

std::string normalizePropertyKey(std::string_view text) {
    std::string key;
    key.reserve(text.size());
    for (const char c : text) {
        if (isKeyChar(c)) {
            key += lowerChar(c);
        }
    }
    return key;
}

const PropertyCatalogRow* findProperty(std::string_view name) noexcept {
    // Normalised in place: no name of the catalog is longer than this, and most look-ups are misses that
    // should not cost an allocation.
    std::array<char, longestName> buffer;
    std::size_t length = 0;
    for (const char c : name) {
        if (isKeyChar(c)) {
            if (length == buffer.size()) {
                return nullptr;
            }
            buffer[length++] = lowerChar(c);
        }
    }
    const std::string_view key(buffer.data(), length);
    const auto found =
        std::lower_bound(nameIndex.begin(), nameIndex.end(), key,
                         [](const IndexEntry& entry, std::string_view k) { return entry.name < k; });
    return found != nameIndex.end() && found->name == key ? &rows[found->row] : nullptr;
}

std::optional<std::string_view> canonicalPropertyName(std::string_view name) noexcept {
    const auto* row = findProperty(name);
    return row != nullptr ? std::optional(row->canonical) : std::nullopt;
}

bool capabilitiesSatisfied(const PropertyCapabilities& row, const PropertyCapabilities& available) noexcept {
    return std::none_of(std::begin(capabilityNames), std::end(capabilityNames),
                        [&](const CapabilityName& capability) {
                            return row.*capability.flag && !(available.*capability.flag);
                        });
}

std::string_view propertyValueKindName(PropertyValueKind kind) noexcept {
    return nameOf(valueKindNames, kind);
}

std::string_view propertyQuantityClassName(PropertyQuantityClass quantity) noexcept {
    return nameOf(quantityClassNames, quantity);
}

std::string_view propertyRecordTypeName(PropertyRecordType record) noexcept {
    return nameOf(recordTypeNames, record);
}

std::string_view propertyCapabilityName(const PropertyCapabilities& capabilities) noexcept {
    for (const auto& capability : capabilityNames) {
        if (capabilities.*capability.flag) {
            return capability.name;
        }
    }
    return "none";
}

} // namespace morquill
