#include "project/rename/block_name.h"

#include <gtest/gtest.h>

namespace morquill::project {
namespace {

TEST(BlockName, IsThatOfADirectoryAndReadsBackAsItself) {
    for (const char* name :
         {"a", "opt-tight", "opt_[m]", "a b", "a.b", ".hidden", "...", "-x", "$x", "\xc3\xa4"}) {
        EXPECT_EQ(blockNameFault(name), std::nullopt) << name;
    }
    EXPECT_EQ(blockNameFault(std::string(255, 'a')), std::nullopt);
    struct Row {
        std::string name;
        std::string fault;
    };
    const std::string control = "a block name cannot hold a line break or another control character";
    const std::string longest(256, 'a');
    const Row rows[] = {
        {"", "a block name cannot be empty"},
        {".", "a block name cannot be '.' or '..'"},
        {"..", "a block name cannot be '.' or '..'"},
        {"../m2", "a block name cannot hold '/': $../m2"},
        {"#", "a block name cannot hold '#': $#"},
        {"a#b", "a block name cannot hold '#': $a#b"},
        {"a\"b\"", "a block name cannot hold a quote: $a\"b\""},
        {"it's", "a block name cannot hold a quote: $it's"},
        {"a,b", "a block name cannot hold ',': $a,b"},
        {" a", "a block name cannot begin or end with a blank: $ a"},
        {"a ", "a block name cannot begin or end with a blank: $a "},
        {" ", "a block name cannot begin or end with a blank: $ "},
        {"a\nb", control},
        {"a\r", control},
        {"a\tb", control},
        {std::string("a\0b", 3), control},
        {"\x7f", control},
        {longest, "a block name cannot be longer than 255 bytes: $" + longest},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(blockNameFault(row.name), row.fault) << row.name;
    }
}

} // namespace
} // namespace morquill::project
