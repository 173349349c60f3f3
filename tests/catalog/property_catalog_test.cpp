#include "catalog/property_catalog.h"
#include "catalog/property_document.h"
#include "support/file.h"
#include "support/text.h"

#include <gtest/gtest.h>

#include <set>

namespace morquill {
namespace {

/// `canonical|kind|record|quantity|unit|capability|tier|aliases`, the format of catalog_rows.txt.
std::string rowLine(const PropertyCatalogRow& row) {
    const std::vector<std::string> aliases(row.aliases.begin(), row.aliases.end());
    return join({std::string(row.canonical), std::string(propertyValueKindName(row.valueKind)),
                 std::string(propertyRecordTypeName(row.recordType)),
                 std::string(propertyQuantityClassName(row.quantityClass)), std::string(row.unit),
                 std::string(propertyCapabilityName(row.capabilities)), std::to_string(row.tier),
                 join(aliases, " ")},
                "|");
}

TEST(PropertyCatalog, RowsAreTheListedOnesInTheListedOrder) {
    const auto listed = readTextFile("tests/catalog/catalog_rows.txt");
    ASSERT_TRUE(listed.has_value());
    const auto lines = splitLines(*listed);
    ASSERT_EQ(lines.size(), 121U);
    ASSERT_EQ(propertyCatalog().size(), 121U);
    for (std::size_t i = 0; i < lines.size(); ++i) {
        EXPECT_EQ(rowLine(propertyCatalog()[i]), lines[i]);
    }
}

TEST(PropertyCatalog, EveryRowAnswersByItsCanonicalNameAndEveryAlias) {
    const auto listed = readTextFile("tests/catalog/catalog_rows.txt");
    ASSERT_TRUE(listed.has_value());
    std::size_t names = 0;
    for (const auto line : splitLines(*listed)) {
        const auto fields = splitOn(line, '|');
        ASSERT_EQ(fields.size(), 8U);
        auto reaching = splitOn(fields[7], ' ');
        reaching.push_back(fields[0]);
        for (const auto& name : reaching) {
            ++names;
            EXPECT_EQ(canonicalPropertyName(name), fields[0]) << name;
        }
    }
    EXPECT_EQ(names, 417U);
}

TEST(PropertyCatalog, EveryRowHasItsOwnOneLineDescription) {
    std::set<std::string_view> seen;
    for (const auto& row : propertyCatalog()) {
        EXPECT_TRUE(row.description.ends_with('.')) << row.canonical;
        EXPECT_EQ(row.description.find('\n'), std::string_view::npos) << row.canonical;
        EXPECT_TRUE(seen.insert(row.description).second) << row.canonical;
    }
}

TEST(PropertyCatalog, TellingDescriptionsAreWordForWord) {
    const std::pair<const char*, const char*> telling[] = {
        {"qc.energy.value", "A canonical energy record selected by method, quantity, spin component, orbital "
                            "reference, state, job, step, or coarse energy kind."},
        {"qc.energy.primary",
         "Final preferred energy-like result (for MOPAC this may be a standard heat of formation)."},
        {"qc.thermochemistry.gibbs_energy",
         "Final Gibbs free energy. Composite-method free energy is used when present."},
        {"qc.orbital.gap", "HOMO-LUMO gap computed as LUMO minus HOMO."},
        {"qc.orbital.alpha.energy",
         "Alpha-orbital energy series. Closed-shell orbital sets are accepted as alpha-compatible."},
        {"qc.vibronic.line_width", "Half-width at half-maximum used to broaden the final vibronic spectrum."},
    };
    for (const auto& [name, description] : telling) {
        const auto* row = findProperty(name);
        ASSERT_NE(row, nullptr) << name;
        EXPECT_EQ(row->canonical, name);
        EXPECT_EQ(row->description, description);
    }
}

TEST(PropertyCatalog, CommonNamesResolve) {
    const std::pair<const char*, const char*> names[] = {
        {"energy", "qc.energy.primary"},
        {"frequency", "qc.vibration.frequency"},
        {"status", "qc.termination"},
        {"temperature", "qc.thermochemistry.temperature"},
        {"nimag", "qc.vibration.imaginary_count"},
        {"imag_freq", "qc.vibration.imaginary_count"},
        {"QC.Energy.SCF", "qc.energy.scf"},
        {"Q C.Charge", "qc.charge"},
        {" (charge)! \t", "qc.charge"},
        {"\xff"
         "charge\0",
         "qc.charge"},
    };
    for (const auto& [name, canonical] : names) {
        EXPECT_EQ(canonicalPropertyName(name), canonical) << name;
    }
}

TEST(PropertyCatalog, OtherNamesFindNothing) {
    for (const std::string& name : {std::string(), std::string(" !?"), std::string("qc"), std::string("qc."),
                                    std::string("energies"), std::string("energ"), std::string("q-c.charge"),
                                    std::string(5'000'000, 'x'), "qc.energy.scf" + std::string(100, '.')}) {
        EXPECT_EQ(findProperty(name), nullptr) << name.substr(0, 60);
        EXPECT_EQ(canonicalPropertyName(name), std::nullopt);
    }
}

TEST(PropertyCatalog, KeysKeepNameCharactersInLowerCase) {
    EXPECT_EQ(normalizePropertyKey("Q C.Ch-ar_ge[7]\n\xc3\xa9"), "qc.ch-ar_ge7");
    EXPECT_EQ(normalizePropertyKey(" !?"), "");
}

TEST(PropertyCatalog, BothSpellingsOfWavenumbersStay) {
    std::set<std::string> caret;
    for (const auto& row : propertyCatalog()) {
        if (row.unit == "cm^-1") {
            caret.insert(std::string(row.canonical));
        }
    }
    EXPECT_EQ(caret, (std::set<std::string>{"qc.thermochemistry.low_frequency_cutoff",
                                            "qc.thermochemistry.interpolation_frequency",
                                            "qc.thermochemistry.imaginary_frequency_threshold"}));
    EXPECT_EQ(findProperty("frequency")->unit, "cm-1");
}

TEST(PropertyCatalog, EveryNeededCapabilityHasToBeAvailable) {
    bool PropertyCapabilities::*const flags[] = {
        &PropertyCapabilities::gradient,      &PropertyCapabilities::hessian,
        &PropertyCapabilities::vibrations,    &PropertyCapabilities::excitedStates,
        &PropertyCapabilities::orbitals,      &PropertyCapabilities::dipole,
        &PropertyCapabilities::atomicCharges, &PropertyCapabilities::spinOrbit,
    };
    EXPECT_TRUE(capabilitiesSatisfied({}, {}));
    for (const auto flag : flags) {
        PropertyCapabilities needed;
        needed.*flag = true;
        PropertyCapabilities others{true, true, true, true, true, true, true, true};
        EXPECT_TRUE(capabilitiesSatisfied(needed, needed));
        EXPECT_TRUE(capabilitiesSatisfied(needed, others));
        EXPECT_TRUE(capabilitiesSatisfied({}, needed));
        others.*flag = false;
        EXPECT_FALSE(capabilitiesSatisfied(needed, others));
        EXPECT_FALSE(capabilitiesSatisfied(needed, {}));
    }
}

TEST(PropertyCatalog, EnumerationsHaveTextsAndFallBackToValueZero) {
    const auto textOf = [](auto name, auto value, int count) {
        std::vector<std::string> texts;
        for (int i = 0; i < count; ++i) {
            texts.emplace_back(name(static_cast<decltype(value)>(i)));
        }
        return join(texts, " ");
    };
    EXPECT_EQ(textOf(propertyValueKindName, PropertyValueKind{}, 7),
              "scalar series text_scalar text_series vector3 vector3_series scalar");
    EXPECT_EQ(
        textOf(propertyQuantityClassName, PropertyQuantityClass{}, 19),
        "unknown dimensionless energy force length frequency spectral_coordinate angle step temperature "
        "pressure mass force_constant spectral_intensity raman_activity dipole_moment entropy "
        "heat_capacity unknown");
    EXPECT_EQ(
        textOf(propertyRecordTypeName, PropertyRecordType{}, 17),
        "none job step atom hessian_element vibrational_mode vibronic_transition vibronic_spectrum_point "
        "duschinsky_element excited_state orbital geometry_frame scan_point irc_point "
        "convergence_criterion spin_orbit_coupling_element none");
    EXPECT_EQ(propertyQuantityClassName(static_cast<PropertyQuantityClass>(-1)), "unknown");
}

TEST(PropertyCatalog, HasAnId) {
    EXPECT_EQ(propertyCatalogId(), "morq.qc.property_catalog.v9");
}

} // namespace
} // namespace morquill
