#include "app/NumberText.h"

#include <gtest/gtest.h>

namespace {

// What was typed, and the number the box shows when it is left.
TEST(SizeBoxReading, LeavingTheBoxShowsItsNumber) {
    const char* const cases[][2] = {{"800", "800"},    {"", "0"},        {"1280x", "1280"},
                                    {"-1024", "1024"}, {"12.5", "12.5"}, {" 1 024", "1024"},
                                    {"1e999", "0"},    {"--5", "0"}};
    for (const auto& [typed, shown] : cases)
        EXPECT_EQ(NumberWithoutSign(LeadingNumber(QString::fromUtf8(typed))),
                  QString::fromUtf8(shown))
            << typed;
}

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
