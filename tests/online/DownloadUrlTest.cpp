#include "online/DownloadUrl.h"

#include "online/modSockets.h"

#include <gtest/gtest.h>

namespace {

// An address as typed, its host and path as split (host nullptr: refused),
// and whether that host is a name worth looking up.
struct UrlCase {
    const char* url;
    const char* host;
    const char* path;
    bool lookedUp;
};
void PrintTo(const UrlCase& c, std::ostream* os) {
    *os << c.url;
}

class UrlTest : public ::testing::TestWithParam<UrlCase> {};

TEST_P(UrlTest, KeepsHostAndPathAsTypedAndLooksUpOnlyPlausibleNames) {
    const UrlCase& c = GetParam();
    const std::optional<DownloadTarget> target = SplitDownloadUrl(QString::fromUtf8(c.url));
    ASSERT_EQ(target.has_value(), c.host != nullptr);
    if (!target)
        return;
    EXPECT_EQ(target->Host, QString::fromUtf8(c.host));
    EXPECT_EQ(target->Path, QString::fromUtf8(c.path));
    EXPECT_EQ(modSockets::IsPlausibleHostName(target->Host), c.lookedUp);
}

INSTANTIATE_TEST_SUITE_P(
    Urls, UrlTest,
    ::testing::Values(
        UrlCase{"http://Example.COM/", "Example.COM", "/", true},
        UrlCase{"HtTp://host:8080/a/b.png?x=1#f", "host:8080", "/a/b.png?x=1#f", false},
        UrlCase{"http://host/a://b", "host", "/a://b", true},
        UrlCase{"http://cdn-1.example_site.org/a", "cdn-1.example_site.org", "/a", true},
        UrlCase{"http://::1/a", "::1", "/a", true}, UrlCase{"http:///abs", "", "/abs", false},
        UrlCase{"http://a b/c", "a b", "/c", false},
        UrlCase{"http://[::1]/a", "[::1]", "/a", false},
        UrlCase{"http://h\xc3\xa9/a", "h\xc3\xa9", "/a", false},
        UrlCase{"http://host", nullptr, nullptr, false},
        UrlCase{"https://host/a.png", nullptr, nullptr, false},
        UrlCase{"file://host/etc/passwd", nullptr, nullptr, false},
        UrlCase{"host/a.png", nullptr, nullptr, false},
        UrlCase{" http://host/a.png", nullptr, nullptr, false}));

TEST(HostNames, ANameTooLongIsNotLookedUp) {
    EXPECT_FALSE(modSockets::IsPlausibleHostName(QString(254, u'a')));
}

} // namespace
