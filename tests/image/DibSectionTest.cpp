#include "common/TestEnvironment.h"
#include "image/cDIBSection.h"

#include <QImage>
#include <QSet>
#include <algorithm>
#include <cmath>
#include <cstring>
#include <random>

namespace {

// The resampling in its plain form, one pixel at a time, with
// the library's rounding: the optimised loop must agree with it bit for bit.
cDIBSection referenceResample(const cDIBSection& source, long newWidth, long newHeight) {
    cDIBSection out;
    out.Create(newWidth, newHeight);
    const double xScale = double(source.Width() - 1) / double(newWidth);
    const double yScale = double(source.Height() - 1) / double(newHeight);
    auto at = [&](long x, long y, int c) {
        return double(
            source.Row(std::min(y, source.Height() - 1))[3 * std::min(x, source.Width() - 1) + c]);
    };
    for (long y = 0; y < newHeight; ++y) {
        const long iy = long(std::floor(y * yScale));
        const double ty = y * yScale - iy;
        for (long x = 0; x < newWidth; ++x) {
            const long ix = long(std::floor(x * xScale));
            const double tx = x * xScale - ix;
            for (int c = 0; c < 3; ++c) {
                const double left =
                    std::nearbyint((1 - ty) * at(ix, iy, c) + ty * at(ix, iy + 1, c));
                const double right =
                    std::nearbyint((1 - ty) * at(ix + 1, iy, c) + ty * at(ix + 1, iy + 1, c));
                out.Row(y)[3 * x + c] =
                    quint8(std::clamp(std::nearbyint((1 - tx) * left + tx * right), 0.0, 255.0));
            }
        }
    }
    return out;
}

cDIBSection noise(long width, long height) {
    cDIBSection dib;
    dib.Create(width, height);
    std::mt19937 random(unsigned(width * 131 + height));
    for (long y = 0; y < height; ++y)
        for (long x = 0; x < width * 3; ++x)
            dib.Row(y)[x] = quint8(random());
    return dib;
}

// Every byte of the bitmap, padding included (both makers leave it zero).
QByteArray bytesOf(const cDIBSection& dib) {
    return QByteArray(reinterpret_cast<const char*>(dib.DIBSectionBitsPtr()), dib.ImageSize()) +
           QByteArray::number(qint64(dib.Width()));
}

TEST(DibSection, RowsArePaddedAndBadSizesRefused) {
    cDIBSection dib;
    ASSERT_TRUE(dib.Create(1023, 3));
    EXPECT_EQ(dib.ImageSize(), 3072 * 3);
    EXPECT_FALSE(dib.Create(0, 5));
    EXPECT_TRUE(dib.IsEmpty()); // the old pixels are gone all the same
    EXPECT_FALSE(dib.Create(5, -1));
    EXPECT_FALSE(dib.Create(60000, 60000));
    EXPECT_FALSE(dib.Resample(60000, 60000).has_value());
}

TEST(DibSection, PictureRowsAreStoredBottomUpInBlueGreenRed) {
    QImage picture(1, 2, QImage::Format_RGB32);
    picture.setPixel(0, 0, qRgb(1, 2, 3)); // top
    picture.setPixel(0, 1, qRgb(4, 5, 6));
    cDIBSection dib;
    ASSERT_TRUE(dib.CreateFromPicture(picture));
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(dib.Row(0)), 8),
              QByteArray("\x06\x05\x04\0\x03\x02\x01\0", 8));
}

// Hand-worked resamplings of the blue of a 2 x 2 picture (memory rows from
// the bottom) to 4 x 4: row 0 is the bottom row, column x lies x/4 across.
TEST(Resample, RoundsEachStepHalfToEven) {
    struct {
        int rows[2][2];
        long x, y;
        int blue;
    } const cases[] = {
        {{{0, 5}, {0, 5}}, 1, 0, 1}, // 1.25
        {{{0, 5}, {0, 5}}, 2, 0, 2}, // 2.5 goes down to even
        {{{0, 5}, {0, 5}}, 3, 0, 4}, // 3.75
        {{{1, 2}, {1, 2}}, 2, 0, 2}, // 1.5 goes up to even
        // Rounding the centre once would give 1.5 -> 2; each column first
        // gives round(0.5) = 0 and round(2.5) = 2, then 1.
        {{{0, 2}, {1, 3}}, 2, 2, 1},
        {{{0, 2}, {1, 3}}, 0, 2, 0},
    };
    for (const auto& c : cases) {
        cDIBSection dib;
        dib.Create(2, 2);
        for (int y = 0; y < 2; ++y)
            for (int x = 0; x < 2; ++x)
                dib.Row(y)[3 * x] = quint8(c.rows[y][x]);
        auto big = dib.Resample(4, 4);
        ASSERT_TRUE(big);
        EXPECT_EQ(big->Row(c.y)[3 * c.x], c.blue) << "x " << c.x << " y " << c.y;
    }
}

TEST(Resample, MatchesThePixelByPixelArithmetic) {
    const long sizes[][4] = {{192, 108, 102, 77},  {37, 23, 101, 64}, {1, 1, 5, 3},
                             {1, 9, 4, 4},         {9, 1, 4, 4},      {300, 200, 7, 180},
                             {640, 480, 1024, 768}};
    for (const auto& [w, h, nw, nh] : sizes) {
        const cDIBSection source = noise(w, h);
        auto fast = source.Resample(nh, nw);
        ASSERT_TRUE(fast);
        EXPECT_EQ(bytesOf(*fast), bytesOf(referenceResample(source, nw, nh))) << w << "x" << h;
    }
    const cDIBSection source = noise(13, 7); // the same size: an exact copy
    auto copy = source.Resample(7, 13);
    ASSERT_TRUE(copy);
    EXPECT_EQ(bytesOf(*copy), bytesOf(source));
    EXPECT_NE(copy->DIBSectionBitsPtr(), source.DIBSectionBitsPtr());
}

TEST(RandomiseBits, GreyOrGreenAndRedOverNoBlue) {
    cDIBSection dib;
    dib.Create(32, 32);
    for (const bool grey : {true, false}) {
        dib.RandomiseBits(grey);
        QSet<int> values;
        for (long y = 0; y < 32; ++y)
            for (long x = 0; x < 32; ++x) {
                const quint8* p = dib.Row(y) + 3 * x;
                EXPECT_TRUE(grey ? p[0] == p[1] && p[1] == p[2] : p[0] == 0);
                values.insert(p[1] * 256 + p[2]);
            }
        EXPECT_GT(values.size(), grey ? 50 : 500);
    }
}

class SavePictureTest : public TestEnvironment {};

TEST_F(SavePictureTest, WritesTheFiftyEightByteOffsetBmpOrGivesError17) {
    cDIBSection dib;
    dib.Create(2, 2);
    std::memcpy(dib.Row(0), "\x01\x02\x03", 3);
    std::memcpy(dib.Row(1) + 3, "\x04\x05\x06", 3);
    const QString path = root() + QStringLiteral("/two.bmp");
    ASSERT_TRUE(dib.SavePicture(path));
    const QByteArray expected("BM\x4A\0\0\0\0\0\0\0\x3A\0\0\0"
                              "\x28\0\0\0\x02\0\0\0\x02\0\0\0\x01\0\x18\0\0\0\0\0\x10\0\0\0"
                              "\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0\0"
                              "\0\0\0\0"
                              "\x01\x02\x03\0\0\0\0\0\0\0\0\x04\x05\x06\0\0",
                              74);
    EXPECT_EQ(readFile(path), expected);

    DibError error; // a file that cannot be created
    EXPECT_FALSE(dib.SavePicture(root() + QStringLiteral("/missing/folder/x.bmp"), &error));
    EXPECT_EQ(error.Number, 17);
    EXPECT_EQ(error.Source, QStringLiteral("Kelvaris.cDIBSection"));
    EXPECT_FALSE(error.Description.isEmpty());
}

} // namespace
