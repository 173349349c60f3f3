#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>
#include <string>
#include <string_view>

/// The property catalog: the fixed vocabulary of quantum-chemical results that the tool family reads from its
/// normalised documents. It is compiled in, not read from a file.
namespace morquill {

/// Shape of a property's value.
enum class PropertyValueKind : std::int32_t {
    scalar = 0,
    series = 1,
    textScalar = 2,
    textSeries = 3,
    vector3 = 4,
    vector3Series = 5,
};

/// Physical kind of a property's value.
enum class PropertyQuantityClass : std::int32_t {
    unknown = 0,
    dimensionless = 1,
    energy = 2,
    force = 3,
    length = 4,
    frequency = 5,
    spectralCoordinate = 6,
    angle = 7,
    step = 8,
    temperature = 9,
    pressure = 10,
    mass = 11,
    forceConstant = 12,
    spectralIntensity = 13,
    ramanActivity = 14,
    dipoleMoment = 15,
    entropy = 16,
    heatCapacity = 17,
};

/// The record to which a value belongs; `none` for a value of the whole document.
enum class PropertyRecordType : std::int32_t {
    none = 0,
    job = 1,
    step = 2,
    atom = 3,
    hessianElement = 4,
    vibrationalMode = 5,
    vibronicTransition = 6,
    vibronicSpectrumPoint = 7,
    duschinskyElement = 8,
    excitedState = 9,
    orbital = 10,
    geometryFrame = 11,
    scanPoint = 12,
    ircPoint = 13,
    convergenceCriterion = 14,
    spinOrbitCouplingElement = 15,
};

/// What a result must contain for a property to exist. A row requires at most one capability.
struct PropertyCapabilities {
    bool gradient = false;
    bool hessian = false;
    bool vibrations = false;
    bool excitedStates = false;
    bool orbitals = false;
    bool dipole = false;
    bool atomicCharges = false;
    bool spinOrbit = false;

    friend constexpr bool operator==(const PropertyCapabilities&, const PropertyCapabilities&) = default;
};

/// The other names of a row, as listed.
class PropertyAliases {
  public:
    static constexpr std::size_t most = 5;

    constexpr PropertyAliases(std::initializer_list<std::string_view> names) {
        for (const auto name : names) {
            names_[count_++] = name; // a sixth name does not compile in the constexpr table
        }
    }
    [[nodiscard]] constexpr const std::string_view* begin() const noexcept { return names_.data(); }
    [[nodiscard]] constexpr const std::string_view* end() const noexcept { return names_.data() + count_; }
    [[nodiscard]] constexpr std::size_t size() const noexcept { return count_; }

  private:
    std::array<std::string_view, most> names_{};
    std::size_t count_ = 0;
};

/// One property. All texts live as long as the process.
struct PropertyCatalogRow {
    std::string_view canonical; ///< canonical name, beginning "qc."
    PropertyAliases aliases;    ///< other names of the property
    PropertyValueKind valueKind;
    PropertyRecordType recordType;
    PropertyQuantityClass quantityClass;
    std::string_view unit; ///< unit of the stored value; empty when it has none
    PropertyCapabilities capabilities;
    std::int32_t tier;            ///< 1 for program, job, system, geometry and leading energies, else 2
    std::string_view description; ///< one line
};

/// The version of the vocabulary, "morq.qc.property_catalog.v9".
[[nodiscard]] std::string_view propertyCatalogId() noexcept;

/// All rows, in catalog order.
[[nodiscard]] std::span<const PropertyCatalogRow> propertyCatalog() noexcept;

/// Returns a name in the form that the catalog compares: letters,
/// digits, `_`, `-` and `.` in lower case, all other bytes dropped.
[[nodiscard]] std::string normalizePropertyKey(std::string_view text);

/// Returns the first row whose canonical name or alias equals the normalised name; null when there is none.
[[nodiscard]] const PropertyCatalogRow* findProperty(std::string_view name) noexcept;

/// Returns the canonical name of the row that `findProperty` finds; nothing when there is none.
[[nodiscard]] std::optional<std::string_view> canonicalPropertyName(std::string_view name) noexcept;

/// False when the row requires a capability that is not available.
[[nodiscard]] bool capabilitiesSatisfied(const PropertyCapabilities& row,
                                         const PropertyCapabilities& available) noexcept;

/// The names of the enumerators, such as "text_scalar"; that of value 0 for a value out of range.
[[nodiscard]] std::string_view propertyValueKindName(PropertyValueKind kind) noexcept;
[[nodiscard]] std::string_view propertyQuantityClassName(PropertyQuantityClass quantity) noexcept;
[[nodiscard]] std::string_view propertyRecordTypeName(PropertyRecordType record) noexcept;
/// The name of the required capability, such as "excited_states", or "none".
[[nodiscard]] std::string_view propertyCapabilityName(const PropertyCapabilities& capabilities) noexcept;

} // namespace morquill
