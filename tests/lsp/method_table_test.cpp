#include "lsp/method_table.h"

#include <set>

namespace {

using namespace morquill::lsp;

TEST(MethodTable, EveryMethodHasOneRow) {
    std::set<std::string_view> methods;
    for (const auto& row : requestTable()) {
        EXPECT_TRUE(methods.insert(row.method).second) << row.method;
        EXPECT_EQ(findRequest(row.method), &row);
    }
    for (const auto& row : notificationTable()) {
        EXPECT_TRUE(methods.insert(row.method).second) << row.method;
        EXPECT_EQ(findNotification(row.method), &row);
    }
    EXPECT_EQ(findRequest("x"), nullptr);
    EXPECT_EQ(findNotification("textDocument/diagnostic"), nullptr);
}

TEST(MethodTable, OptionsAreJson) {
    for (const auto& row : requestTable()) {
        EXPECT_TRUE(parseJson(row.options)) << row.method;
    }
}

TEST(MethodTable, WhatIsAnsweredIsOffered) {
    const auto offered = serverCapabilities({});
    for (const auto& row : requestTable()) {
        if (!row.capability.empty()) {
            EXPECT_TRUE(offered.contains(std::string(row.capability))) << row.method;
        }
    }
    EXPECT_EQ(offered["positionEncoding"], "utf-16");
    ClientFeatures client;
    client.unit = PositionUnit::utf8;
    EXPECT_EQ(serverCapabilities(client)["positionEncoding"], "utf-8");
}

} // namespace
