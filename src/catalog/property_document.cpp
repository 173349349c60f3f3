#include "catalog/property_document.h"

#include "catalog/property_catalog.h"
#include "support/text.h"

namespace morquill {

namespace {

constexpr std::string_view head = R"(# Properties

The names by which results are read, as in `{{ opt.energy }}` or `result(opt, gap)`. A property answers to its
canonical name and to every other name of its row; upper and lower case are the same, and characters other than
letters, digits, `_`, `-` and `.` are passed over. None of these names can be taken for a formula or a profile of a
`@derive` block.

"Shape" is the form of the value; "per" names the record that a value belongs to, where it is not the whole result;
"unit" is the unit in which it is stored; "needs" is what a result must offer for the property to exist; "tier" is 1
for program, job, system, geometry and leading energies and 2 for the rest.

)";

std::string code(std::string_view text) {
    return "`" + std::string(text) + "`";
}

std::string orDash(std::string_view text, std::string_view nothing) {
    return text == nothing ? "-" : replaceAll(text, "_", " ");
}

std::string tableRow(const PropertyCatalogRow& row) {
    std::vector<std::string> aliases;
    for (const auto alias : row.aliases) {
        aliases.push_back(code(alias));
    }
    const std::string cells[] = {
        code(row.canonical),
        join(aliases, ", "),
        orDash(propertyValueKindName(row.valueKind), ""),
        orDash(propertyRecordTypeName(row.recordType), "none"),
        orDash(propertyQuantityClassName(row.quantityClass), "unknown"),
        row.unit.empty() ? "-" : code(row.unit),
        orDash(propertyCapabilityName(row.capabilities), "none"),
        std::to_string(row.tier),
        std::string(row.description),
    };
    std::string line = "|";
    for (const auto& cell : cells) {
        line += ' ' + cell + " |";
    }
    return line + '\n';
}

} // namespace

std::string renderPropertyDocument() {
    std::string text(head);
    text += "Catalog " + code(propertyCatalogId()) + ", " + std::to_string(propertyCatalog().size()) +
            " properties. This page is written by `cmake --build <dir> --target properties_doc`.\n\n"
            "| Name | Other names | Shape | Per | Quantity | Unit | Needs | Tier | What it is |\n"
            "|---|---|---|---|---|---|---|---|---|\n";
    for (const auto& row : propertyCatalog()) {
        text += tableRow(row);
    }
    return text;
}

} // namespace morquill
