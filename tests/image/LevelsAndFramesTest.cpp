#include "common/TestEnvironment.h"
#include "image/FrameOverlay.h"
#include "image/LevelAdjust.h"
#include "image/cDIBSection.h"

#include <QImage>
#include <cstring>

namespace {

// Black and white points, a byte before and after; every byte counts,
// padding included.
TEST(Levels, MapEveryByteIncludingThePadding) {
    const struct {
        short black, white;
        int in, out;
    } cases[] = {{0, 2, 1, 128}, // 127.5 to even
                 {10, 20, 10, 0},   {10, 20, 15, 128}, {10, 20, 20, 255},
                 {20, 10, 15, 255}, {20, 10, 5, 0}}; // white under black
    for (const auto& c : cases) {
        cDIBSection dib;
        dib.Create(1, 1); // three colour bytes and one byte of padding
        std::memset(dib.Row(0), c.in, 4);
        AdjustLevels(dib, c.black, c.white);
        for (int i = 0; i < 4; ++i)
            EXPECT_EQ(dib.Row(0)[i], c.out) << c.black << " " << c.white << " " << c.in;
    }
}

// A picture one row high.
QImage rowImage(const QList<QRgb>& row) {
    QImage image(int(row.size()), 1, QImage::Format_RGB32);
    for (int x = 0; x < row.size(); ++x)
        image.setPixel(x, 0, row[x]);
    return image;
}

using ApplyFrameTest = TestEnvironment;

// Only exact magenta is a hole in the frame.
TEST_F(ApplyFrameTest, TheFrameIsReadAndLaidOverOrLeavesTheScreenImageItself) {
    auto screen = std::make_shared<cDIBSection>();
    screen->CreateFromPicture(rowImage({0x0A141E, 0x0A141E, 0x0A141E, 0x0A141E}));
    EXPECT_EQ(ApplyFrame(QString(), screen), screen);
    EXPECT_EQ(ApplyFrame(root() + QStringLiteral("/gone.png"), screen), screen);
    EXPECT_EQ(ApplyFrame(writeFile(QStringLiteral("frame.png"), "not a picture"), screen), screen);

    const QString path = root() + QStringLiteral("/Frame One.PNG");
    ASSERT_TRUE(rowImage({0, 0xFF00FF, 0xFF00FE, 0xFE00FF}).save(path, "PNG"));
    const auto framed = ApplyFrame(path, screen);
    ASSERT_NE(framed, screen);
    // Blue, green, red: black, the screen through the hole, the two near-magentas.
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(framed->Row(0)), 12),
              QByteArray("\0\0\0\x1E\x14\x0A\xFE\0\xFF\xFF\0\xFE", 12));
    EXPECT_EQ(screen->Row(0)[0], 0x1E); // the screen image itself is untouched
}

} // namespace
