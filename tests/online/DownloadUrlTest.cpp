#include "online/DownloadUrl.h"

#include "online/modSockets.h"

#include <gtest/gtest.h>

namespace {

struct SplitCase {
    const char* url;
    const char* host; // nullptr when refused
    const char* path;
};
void PrintTo(const SplitCase& c, std::ostream* os) {
    *os << c.url;
}

class SplitTest : public ::testing::TestWithParam<SplitCase> {};

TEST_P(SplitTest, KeepsHostAndPathAsTyped) {
    const SplitCase& c = GetParam();
    const std::optional<DownloadTarget> target = SplitDownloadUrl(QString::fromUtf8(c.url));
    ASSERT_EQ(target.has_value(), c.host != nullptr);
    if (target) {
        EXPECT_EQ(target->Host, QString::fromUtf8(c.host));
        EXPECT_EQ(target->Path, QString::fromUtf8(c.path));
    }
}

INSTANTIATE_TEST_SUITE_P(Urls, SplitTest,
                         ::testing::Values(SplitCase{"http://Example.COM/", "Example.COM", "/"},
                                           SplitCase{"HtTp://host:8080/a/b.png?x=1#f", "host:8080",
                                                     "/a/b.png?x=1#f"},
                                           SplitCase{"http:///abs", "", "/abs"},
                                           SplitCase{"http://host/a://b", "host", "/a://b"},
                                           SplitCase{"http://host", nullptr, nullptr},
                                           SplitCase{"https://host/a.png", nullptr, nullptr},
                                           SplitCase{"file://host/etc/passwd", nullptr, nullptr},
                                           SplitCase{"host/a.png", nullptr, nullptr},
                                           SplitCase{" http://host/a.png", nullptr, nullptr}));

TEST(ContentType, AcceptsTheThreePictureTypesExactly) {
    EXPECT_EQ(ContentTypeOfLine(" CONTENT-TYPE: x"), std::nullopt);
    EXPECT_EQ(ContentTypeOfLine("Content-Type:\timage/png \t "), QByteArray("\timage/png \t"));
    EXPECT_EQ(ContentTypeOfLine("content-type:"), QByteArray());
    for (const char* type : {"image/jpeg", "image/gif", "image/png"})
        EXPECT_TRUE(IsAcceptedImageType(type));
    for (const char* type : {"image/jpg", "image/png;", "image/svg+xml", "", "text/html"})
        EXPECT_FALSE(IsAcceptedImageType(type));
    EXPECT_EQ(DownloadTempFileName(4, "image/jpeg"), QStringLiteral("kelvaris.tmp4.jpeg"));
}

TEST(HostNames, OnlyPlausibleNamesAreLookedUp) {
    for (const char* host : {"127.0.0.1", "::1", "cdn-1.example_site.org"})
        EXPECT_TRUE(modSockets::IsPlausibleHostName(QString::fromLatin1(host))) << host;
    for (const char* host : {"", "host:80", "a b", "[::1]", "host/", "h\xc3\xa9"})
        EXPECT_FALSE(modSockets::IsPlausibleHostName(QString::fromUtf8(host))) << host;
    EXPECT_FALSE(modSockets::IsPlausibleHostName(QString(254, u'a')));
}

} // namespace
