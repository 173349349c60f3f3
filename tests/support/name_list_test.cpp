#include "support/name_list.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace morquill {
namespace {

TEST(NameList, KeepsEachNameOnceInOrderOfFirstAppearance) {
    NameList list;
    for (const char* name : {"b", "a", "b", "", "B", "a"}) {
        list.add(name);
    }
    EXPECT_THAT(list.names(), ::testing::ElementsAre("b", "a", "B"));
}

TEST(NameList, IsEmptyAtFirst) {
    EXPECT_THAT(NameList().names(), ::testing::IsEmpty());
}

} // namespace
} // namespace morquill
