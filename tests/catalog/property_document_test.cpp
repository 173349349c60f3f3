#include "catalog/property_document.h"

#include "catalog/property_catalog.h"
#include "support/file.h"
#include "support/text.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

/// The lines of the table without its head.
std::vector<std::string> tableRows() {
    std::vector<std::string> rows;
    const std::string text = renderPropertyDocument();
    for (const auto line : splitLines(text)) {
        if (line.starts_with("| `")) {
            rows.emplace_back(line);
        }
    }
    return rows;
}

TEST(PropertyDocument, IsHeadedByTheCatalogAndItsSize) {
    const std::string text = renderPropertyDocument();
    EXPECT_TRUE(text.starts_with("# Properties\n\n"));
    EXPECT_THAT(text, ::testing::HasSubstr("Catalog `morq.qc.property_catalog.v9`, " +
                                           std::to_string(propertyCatalog().size()) + " properties."));
    EXPECT_THAT(text, ::testing::EndsWith(" |\n"));
}

TEST(PropertyDocument, HasOneRowOfNineFilledCellsPerPropertyInCatalogOrder) {
    const auto rows = tableRows();
    ASSERT_EQ(rows.size(), propertyCatalog().size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const auto& property = propertyCatalog()[i];
        EXPECT_TRUE(rows[i].starts_with("| `" + std::string(property.canonical) + "` | ")) << rows[i];
        EXPECT_TRUE(rows[i].ends_with("| " + std::string(property.description) + " |")) << rows[i];
        const auto cells = splitOn(rows[i], '|');
        ASSERT_EQ(cells.size(), 11U) << rows[i]; // nothing is outside the bars
        for (std::size_t cell = 1; cell < 10; ++cell) {
            EXPECT_FALSE(trim(cells[cell]).empty()) << rows[i];
        }
    }
}

TEST(PropertyDocument, HasADashForWhatAPropertyDoesNotHave) {
    EXPECT_THAT(tableRows(),
                ::testing::Contains(
                    "| `qc.program` | `program`, `qc.program.name` | text scalar | - | - | - | - | 1 | "
                    "Name of the program that produced the result, as normalised by the reader. |"));
    EXPECT_THAT(tableRows(),
                ::testing::Contains("| `qc.method` | `method` | text scalar | job | - | - | - | 1 | Level of "
                                    "theory of the job, without the basis set. |"));
}

TEST(PropertyDocument, IsCurrent) {
    EXPECT_EQ(readTextFile("docs/properties.md"), renderPropertyDocument())
        << "docs/properties.md is stale; build the target properties_doc";
}

TEST(PropertyDocument, ShowsARowWithAllItsNames) {
    EXPECT_NE(
        renderPropertyDocument().find(
            "| `qc.vibration.ir_intensity` | `ir_intensity`, `vibration.ir_intensity` | series | vibrational "
            "mode | spectral intensity | `km/mol` | vibrations | 2 | Integrated infrared absorption "
            "intensity of each normal mode. |\n"),
        std::string::npos);
}

} // namespace
} // namespace morquill
