#include "catalog/property_catalog.h"

#include "catalog/property_rows.h"
#include "support/text.h"
#include "support/word_table.h"

#include <algorithm>

namespace morquill {

namespace {

using catalog_rows::rows;

/// A name and the index of its row.
struct IndexEntry {
    std::string_view name;
    std::uint16_t row = 0;

    // A false alarm: the check takes the comparison with 0 inside a defaulted `<=>` for a null pointer.
    // NOLINTNEXTLINE(modernize-use-nullptr)
    friend constexpr auto operator<=>(const IndexEntry&, const IndexEntry&) = default;
};

constexpr std::size_t nameCount = [] {
    std::size_t count = 0;
    for (const auto& row : rows) {
        count += 1 + row.aliases.size();
    }
    return count;
}();

/// All names in byte order. A name of two rows has the earlier one first, which is the one that counts.
constexpr std::array<IndexEntry, nameCount> nameIndex = [] {
    std::array<IndexEntry, nameCount> index{};
    std::size_t next = 0;
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const auto row = static_cast<std::uint16_t>(i);
        index[next++] = {rows[i].canonical, row};
        for (const auto alias : rows[i].aliases) {
            index[next++] = {alias, row};
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

// The index compares names as written in the table, so the table has to be normalised.
static_assert(std::all_of(nameIndex.begin(), nameIndex.end(), [](const IndexEntry& entry) {
    return !entry.name.empty() && std::all_of(entry.name.begin(), entry.name.end(),
                                              [](char c) { return isKeyChar(c) && lowerChar(c) == c; });
}));

constexpr auto valueKindWords = wordTable<PropertyValueKind>({
    {"scalar", PropertyValueKind::scalar},
    {"series", PropertyValueKind::series},
    {"text_scalar", PropertyValueKind::textScalar},
    {"text_series", PropertyValueKind::textSeries},
    {"vector3", PropertyValueKind::vector3},
    {"vector3_series", PropertyValueKind::vector3Series},
});

constexpr auto quantityClassWords = wordTable<PropertyQuantityClass>({
    {"unknown", PropertyQuantityClass::unknown},
    {"dimensionless", PropertyQuantityClass::dimensionless},
    {"energy", PropertyQuantityClass::energy},
    {"force", PropertyQuantityClass::force},
    {"length", PropertyQuantityClass::length},
    {"frequency", PropertyQuantityClass::frequency},
    {"spectral_coordinate", PropertyQuantityClass::spectralCoordinate},
    {"angle", PropertyQuantityClass::angle},
    {"step", PropertyQuantityClass::step},
    {"temperature", PropertyQuantityClass::temperature},
    {"pressure", PropertyQuantityClass::pressure},
    {"mass", PropertyQuantityClass::mass},
    {"force_constant", PropertyQuantityClass::forceConstant},
    {"spectral_intensity", PropertyQuantityClass::spectralIntensity},
    {"raman_activity", PropertyQuantityClass::ramanActivity},
    {"dipole_moment", PropertyQuantityClass::dipoleMoment},
    {"entropy", PropertyQuantityClass::entropy},
    {"heat_capacity", PropertyQuantityClass::heatCapacity},
});

constexpr auto recordTypeWords = wordTable<PropertyRecordType>({
    {"none", PropertyRecordType::none},
    {"job", PropertyRecordType::job},
    {"step", PropertyRecordType::step},
    {"atom", PropertyRecordType::atom},
    {"hessian_element", PropertyRecordType::hessianElement},
    {"vibrational_mode", PropertyRecordType::vibrationalMode},
    {"vibronic_transition", PropertyRecordType::vibronicTransition},
    {"vibronic_spectrum_point", PropertyRecordType::vibronicSpectrumPoint},
    {"duschinsky_element", PropertyRecordType::duschinskyElement},
    {"excited_state", PropertyRecordType::excitedState},
    {"orbital", PropertyRecordType::orbital},
    {"geometry_frame", PropertyRecordType::geometryFrame},
    {"scan_point", PropertyRecordType::scanPoint},
    {"irc_point", PropertyRecordType::ircPoint},
    {"convergence_criterion", PropertyRecordType::convergenceCriterion},
    {"spin_orbit_coupling_element", PropertyRecordType::spinOrbitCouplingElement},
});

struct CapabilityName {
    bool PropertyCapabilities::*flag;
    std::string_view name;
};

/// The names of the capabilities, in the order in which they are tested.
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
    // Normalised in a local buffer: no name of the catalog is longer, and most look-ups are misses that
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
    return valueKindWords.nameOf(kind);
}

std::string_view propertyQuantityClassName(PropertyQuantityClass quantity) noexcept {
    return quantityClassWords.nameOf(quantity);
}

std::string_view propertyRecordTypeName(PropertyRecordType record) noexcept {
    return recordTypeWords.nameOf(record);
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
