#include "common/TestEnvironment.h"
#include "image/cDIBSection.h"

#include <QDir>
#include <QFile>
#include <QImage>
#include <QSet>
#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <random>

namespace {

// Fills the blue, green and red of memory row y, pixel x.
void setPixel(cDIBSection& dib, long x, long y, int blue, int green, int red) {
    quint8* p = dib.Row(y) + 3 * x;
    p[0] = quint8(blue);
    p[1] = quint8(green);
    p[2] = quint8(red);
}

int blueAt(const cDIBSection& dib, long x, long y) {
    return dib.Row(y)[3 * x];
}

// The resampling exactly as the design words it, one pixel at a time, with
// the library's rounding: the optimised loop must agree with it bit for bit.
cDIBSection referenceResample(const cDIBSection& source, long newWidth, long newHeight) {
    cDIBSection out;
    out.Create(newWidth, newHeight);
    const double xScale = double(source.Width() - 1) / double(newWidth);
    const double yScale = double(source.Height() - 1) / double(newHeight);
    auto at = [&](long x, long y, int c) {
        x = std::min(x, source.Width() - 1);
        y = std::min(y, source.Height() - 1);
        return double(source.Row(y)[3 * x + c]);
    };
    for (long y = 0; y < newHeight; ++y) {
        const double fy = y * yScale;
        const long iy = long(std::floor(fy));
        const double ty = fy - iy;
        for (long x = 0; x < newWidth; ++x) {
            const double fx = x * xScale;
            const long ix = long(std::floor(fx));
            const double tx = fx - ix;
            for (int c = 0; c < 3; ++c) {
                const double left =
                    std::nearbyint((1 - ty) * at(ix, iy, c) + ty * at(ix, iy + 1, c));
                const double right =
                    std::nearbyint((1 - ty) * at(ix + 1, iy, c) + ty * at(ix + 1, iy + 1, c));
                const double value = std::nearbyint((1 - tx) * left + tx * right);
                out.Row(y)[3 * x + c] = quint8(std::clamp(value, 0.0, 255.0));
            }
        }
    }
    return out;
}

cDIBSection noise(long width, long height, unsigned seed) {
    cDIBSection dib;
    dib.Create(width, height);
    std::mt19937 random(seed);
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < dib.BytesPerScanLine(); ++x)
            dib.Row(y)[x] = x < width * 3 ? quint8(random()) : 0;
    return dib;
}

bool samePixels(const cDIBSection& a, const cDIBSection& b) {
    if (a.Width() != b.Width() || a.Height() != b.Height())
        return false;
    for (long y = 0; y < a.Height(); ++y)
        if (std::memcmp(a.Row(y), b.Row(y), size_t(a.Width() * 3)) != 0)
            return false;
    return true;
}

class ScanLineTest : public ::testing::TestWithParam<std::pair<long, long>> {};

TEST_P(ScanLineTest, RowsArePaddedToFourBytes) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(GetParam().first, 3));
    EXPECT_EQ(dib.BytesPerScanLine(), GetParam().second);
    EXPECT_EQ(dib.ImageSize(), GetParam().second * 3);
}

INSTANTIATE_TEST_SUITE_P(Widths, ScanLineTest,
                         ::testing::Values(std::pair(1L, 4L), std::pair(2L, 8L), std::pair(4L, 12L),
                                           std::pair(5L, 16L), std::pair(1023L, 3072L),
                                           std::pair(1024L, 3072L)));

TEST(DibSection, CreateRefusesEmptyAndHugeSizes) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(2, 2));
    EXPECT_FALSE(dib.Create(0, 5));
    EXPECT_TRUE(dib.IsEmpty()); // the old pixels are gone all the same
    EXPECT_FALSE(dib.Create(5, -1));
    EXPECT_FALSE(dib.Create(60000, 60000));
    EXPECT_FALSE(dib.Resample(60000, 60000).has_value());
}

TEST(DibSection, PictureRowsAreStoredBottomUpInBlueGreenRed) {
    QImage picture(3, 2, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(1, 2, 3)); // top left
    picture.setPixel(2, 0, qRgb(4, 5, 6));
    picture.setPixel(0, 1, qRgb(7, 8, 9)); // bottom left
    picture.setPixel(1, 1, qRgb(10, 11, 12));
    picture.setPixel(2, 1, qRgb(13, 14, 15));
    picture.setPixel(1, 0, qRgb(16, 17, 18));
    cDIBSection dib;
    ASSERT_TRUE(dib.CreateFromPicture(picture));
    ASSERT_EQ(dib.Width(), 3);
    ASSERT_EQ(dib.BytesPerScanLine(), 12);
    const QByteArray bottom(reinterpret_cast<const char*>(dib.Row(0)), 12);
    const QByteArray top(reinterpret_cast<const char*>(dib.Row(1)), 12);
    EXPECT_EQ(bottom, QByteArray("\x09\x08\x07\x0C\x0B\x0A\x0F\x0E\x0D\x00\x00\x00", 12));
    EXPECT_EQ(top, QByteArray("\x03\x02\x01\x12\x11\x10\x06\x05\x04\x00\x00\x00", 12));
}

TEST(Resample, HalvesGoToTheEvenNeighbour) {
    // Two columns stretched to four: columns 1 to 3 lie a quarter, a half
    // and three quarters of the way across.
    cDIBSection dib;
    dib.Create(2, 1);
    setPixel(dib, 0, 0, 1, 2, 0);
    setPixel(dib, 1, 0, 2, 3, 5);
    auto wide = dib.Resample(1, 4);
    ASSERT_TRUE(wide);
    const int expected[4][3] = {{1, 2, 0}, {1, 2, 1}, {2, 2, 2}, {2, 3, 4}};
    for (int x = 0; x < 4; ++x)
        for (int c = 0; c < 3; ++c)
            EXPECT_EQ(wide->Row(0)[3 * x + c], expected[x][c]) << "x " << x << " channel " << c;
}

TEST(Resample, RoundsVerticallyThenHorizontally) {
    // At the centre of a 2 x 2 picture one rounding would give
    // (0 + 1 + 2 + 3) / 4 = 1.5 -> 2; rounding each column first gives
    // round(0.5) = 0 and round(2.5) = 2, then round(1.0) = 1.
    cDIBSection dib;
    dib.Create(2, 2);
    setPixel(dib, 0, 0, 0, 0, 0);
    setPixel(dib, 0, 1, 1, 0, 0);
    setPixel(dib, 1, 0, 2, 0, 0);
    setPixel(dib, 1, 1, 3, 0, 0);
    auto big = dib.Resample(4, 4);
    ASSERT_TRUE(big);
    EXPECT_EQ(blueAt(*big, 2, 2), 1);
    EXPECT_EQ(blueAt(*big, 0, 0), 0);
    EXPECT_EQ(blueAt(*big, 2, 0), 1); // round(1.0): halfway between 0 and 2
    EXPECT_EQ(blueAt(*big, 0, 2), 0); // round(0.5)
}

TEST(Resample, DividesByTheNewSizeNotTheNewSizeMinusOne) {
    // 1024 -> 512 columns: new column x samples source column 2x * 1023/1024,
    // so column 511 reads between source columns 1021 and 1022, never 1023.
    cDIBSection dib;
    dib.Create(1024, 2);
    for (long x = 0; x < 1024; ++x) {
        setPixel(dib, x, 0, x == 1023 ? 255 : 0, 0, 0);
        setPixel(dib, x, 1, x == 1023 ? 255 : 0, 0, 0);
    }
    setPixel(dib, 2, 0, 200, 0, 0);
    setPixel(dib, 2, 1, 200, 0, 0);
    auto half = dib.Resample(1, 512);
    ASSERT_TRUE(half);
    EXPECT_EQ(blueAt(*half, 511, 0), 0);
    // Column 1 sits at 1.998: 0.998 of the way to source column 2.
    EXPECT_EQ(blueAt(*half, 1, 0), int(std::nearbyint(200 * (2046.0 / 1024 - 1))));
}

class ResampleSizes : public ::testing::TestWithParam<std::array<long, 4>> {};

TEST_P(ResampleSizes, MatchesThePixelByPixelArithmetic) {
    const auto [w, h, nw, nh] = GetParam();
    const cDIBSection source = noise(w, h, unsigned(w * 131 + h));
    auto fast = source.Resample(nh, nw);
    ASSERT_TRUE(fast);
    EXPECT_TRUE(samePixels(*fast, referenceResample(source, nw, nh)));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, ResampleSizes,
    ::testing::Values(std::array<long, 4>{192, 108, 102, 77}, std::array<long, 4>{37, 23, 101, 64},
                      std::array<long, 4>{1, 1, 5, 3}, std::array<long, 4>{1, 9, 4, 4},
                      std::array<long, 4>{9, 1, 4, 4}, std::array<long, 4>{300, 200, 7, 180},
                      std::array<long, 4>{640, 480, 1024, 768}));

TEST(Resample, SameSizeIsAnExactCopy) {
    const cDIBSection source = noise(13, 7, 5);
    auto copy = source.Resample(7, 13);
    ASSERT_TRUE(copy);
    EXPECT_TRUE(samePixels(*copy, source));
    EXPECT_NE(copy->DIBSectionBitsPtr(), source.DIBSectionBitsPtr());
}

TEST(RandomiseBits, GreyOrGreenAndRedOverNoBlue) {
    cDIBSection dib;
    dib.Create(32, 32);
    dib.RandomiseBits(true);
    QSet<int> values;
    for (long y = 0; y < 32; ++y)
        for (long x = 0; x < 32; ++x) {
            const quint8* p = dib.Row(y) + 3 * x;
            EXPECT_TRUE(p[0] == p[1] && p[1] == p[2]);
            values.insert(p[0]);
        }
    EXPECT_GT(values.size(), 50);

    dib.RandomiseBits(false);
    values.clear();
    for (long y = 0; y < 32; ++y)
        for (long x = 0; x < 32; ++x) {
            const quint8* p = dib.Row(y) + 3 * x;
            EXPECT_EQ(p[0], 0);
            values.insert(p[1] * 256 + p[2]);
        }
    EXPECT_GT(values.size(), 500);
}

class SavePictureTest : public TestEnvironment {};

TEST_F(SavePictureTest, WritesTheFiftyEightByteOffsetBmp) {
    cDIBSection dib;
    dib.Create(2, 2);
    setPixel(dib, 0, 0, 1, 2, 3);
    setPixel(dib, 1, 1, 4, 5, 6);
    const QString path = root() + QStringLiteral("/two.bmp");
    ASSERT_TRUE(dib.SavePicture(path));
    const QByteArray bytes = readFile(path);
    ASSERT_EQ(bytes.size(), 74);
    const QByteArray expectedHeader("BM\x4A\0\0\0\0\0\0\0\x3A\0\0\0"
                                    "\x28\0\0\0\x02\0\0\0\x02\0\0\0\x01\0\x18\0\0\0\0\0\x10\0\0\0"
                                    "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                                    "\0\0\0\0",
                                    58);
    EXPECT_EQ(bytes.left(58), expectedHeader);
    EXPECT_EQ(bytes.mid(58), QByteArray("\x01\x02\x03\0\0\0\0\0\0\0\0\x04\x05\x06\0\0", 16));
    // Qt reads it back as the same picture (the bottom row is stored first).
    const QImage back(path);
    ASSERT_FALSE(back.isNull());
    EXPECT_EQ(back.pixel(0, 1) & 0xFFFFFF, 0x030201u);
    EXPECT_EQ(back.pixel(1, 0) & 0xFFFFFF, 0x060504u);
}

TEST_F(SavePictureTest, AFileThatCannotBeCreatedGivesError17) {
    cDIBSection dib;
    dib.Create(2, 2);
    DibError error;
    EXPECT_FALSE(dib.SavePicture(root() + QStringLiteral("/missing/folder/x.bmp"), &error));
    EXPECT_EQ(error.Number, 17);
    EXPECT_EQ(error.Source, QStringLiteral("Kelvaris.cDIBSection"));
    EXPECT_FALSE(error.Description.isEmpty());
}

} // namespace
