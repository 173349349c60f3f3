#include "lsp/base/uri.h"

namespace {

using morquill::lsp::pathOfUri;
using morquill::lsp::uriOfPath;

TEST(Uri, NamesAFile) {
    EXPECT_EQ(pathOfUri("file:///home/a/b.mq"), "/home/a/b.mq");
    EXPECT_EQ(pathOfUri("file://localhost/a.mq"), "/a.mq");
    EXPECT_EQ(pathOfUri("FILE:/a.mq"), "/a.mq");
    EXPECT_EQ(pathOfUri("file:///a%20b%23%25/%c3%A4.mq"), "/a b#%/\xc3\xa4.mq");
    EXPECT_EQ(pathOfUri("file:///a.mq#L3"), "/a.mq");
}

TEST(Uri, NamesNone) {
    for (const auto* uri : {"untitled:Untitled-1", "http://host/a.mq", "file://host/a.mq", "file:a.mq", "",
                            "file:///a%2", "file:///a%zz", "file:///a%00"}) {
        EXPECT_EQ(pathOfUri(uri), std::nullopt) << uri;
    }
}

TEST(Uri, EscapesWhatAUriCannotHold) {
    EXPECT_EQ(uriOfPath("/a b/c#d%e/\xc3\xa4~.mq"), "file:///a%20b/c%23d%25e/%C3%A4~.mq");
    EXPECT_EQ(pathOfUri(uriOfPath("/a?b&c=d+e:f@g")), "/a?b&c=d+e:f@g");
}

} // namespace
