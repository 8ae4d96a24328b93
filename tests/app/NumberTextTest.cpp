#include "app/NumberText.h"

#include <gtest/gtest.h>

namespace {

struct SizeBoxCase {
    const char* typed;
    const char* shown;
};

class SizeBoxReading : public ::testing::TestWithParam<SizeBoxCase> {};

TEST_P(SizeBoxReading, LeavingTheBoxShowsItsNumber) {
    const SizeBoxCase c = GetParam();
    EXPECT_EQ(NumberWithoutSign(LeadingNumber(QString::fromUtf8(c.typed))),
              QString::fromUtf8(c.shown));
}

INSTANTIATE_TEST_SUITE_P(Typed, SizeBoxReading,
                         ::testing::Values(SizeBoxCase{"800", "800"}, SizeBoxCase{"", "0"},
                                           SizeBoxCase{"1280x", "1280"},
                                           SizeBoxCase{"-1024", "1024"},
                                           SizeBoxCase{"12.5", "12.5"},
                                           SizeBoxCase{" 1 024", "1024"}, SizeBoxCase{"1e999", "0"},
                                           SizeBoxCase{"--5", "0"}),
                         [](const auto& info) { return std::to_string(info.index); });

TEST(CheckedFromText, OnlyOneIsChecked) {
    EXPECT_TRUE(CheckedFromText(QStringLiteral("1")));
    EXPECT_FALSE(CheckedFromText(QStringLiteral("0")));
    EXPECT_FALSE(CheckedFromText(QStringLiteral("abc")));
    EXPECT_FALSE(CheckedFromText(QString()));
}

TEST(RoundHalfEven, HalvesGoToTheEvenNeighbour) {
    EXPECT_EQ(RoundHalfEven(127.5), 128);
    EXPECT_EQ(RoundHalfEven(42.5), 42);
    EXPECT_EQ(RoundHalfEven(-0.5), 0);
    EXPECT_EQ(RoundHalfEven(2.5000001), 3);
}

} // namespace
