#include "common/CaseName.h"
#include "common/TestEnvironment.h"
#include "image/FrameOverlay.h"
#include "image/LevelAdjust.h"
#include "image/cDIBSection.h"

#include <QImage>

namespace {

struct LevelCase {
    const char* name;
    short black;
    short white;
    int in;
    int out;
};

class Levels : public ::testing::TestWithParam<LevelCase> {};

TEST_P(Levels, MapEveryByteIncludingThePadding) {
    cDIBSection dib;
    dib.Create(1, 1); // three colour bytes and one byte of padding
    for (int i = 0; i < 4; ++i)
        dib.Row(0)[i] = quint8(GetParam().in);
    AdjustLevels(dib, GetParam().black, GetParam().white);
    for (int i = 0; i < 4; ++i)
        EXPECT_EQ(dib.Row(0)[i], GetParam().out) << "byte " << i;
}

INSTANTIATE_TEST_SUITE_P(
    Values, Levels,
    ::testing::Values(LevelCase{"127.5 to even", 0, 2, 1, 128},
                      LevelCase{"42.5 to even", 0, 6, 1, 42}, LevelCase{"at black", 10, 20, 10, 0},
                      LevelCase{"below black", 10, 20, 3, 0}, LevelCase{"between", 10, 20, 15, 128},
                      LevelCase{"at white", 10, 20, 20, 255}, LevelCase{"identity", 0, 255, 77, 77},
                      LevelCase{"white under black, high", 20, 10, 15, 255},
                      LevelCase{"white under black, low", 20, 10, 5, 0}),
    CaseName<LevelCase>);

QImage filled(QRgb colour) {
    QImage image(1024, 768, QImage::Format_RGB32);
    image.fill(colour);
    return image;
}

cDIBSection bitmapOf(const QImage& image) {
    cDIBSection dib;
    dib.CreateFromPicture(image);
    return dib;
}

TEST(OverlayFrame, OnlyExactMagentaIsAHole) {
    QImage frameImage = filled(qRgb(255, 0, 255));
    frameImage.setPixel(0, 0, qRgb(255, 0, 254));
    frameImage.setPixel(1, 0, qRgb(255, 1, 255));
    frameImage.setPixel(2, 0, qRgb(254, 0, 255));
    cDIBSection frame = bitmapOf(frameImage);
    QImage pictureImage(1024, 768, QImage::Format_RGB32);
    for (int y = 0; y < 768; ++y)
        for (int x = 0; x < 1024; ++x)
            pictureImage.setPixel(x, y, qRgb(x & 255, y & 255, (x + y) & 255));
    const cDIBSection picture = bitmapOf(pictureImage);

    OverlayFrame(frame, picture);
    const quint8* top = frame.Row(767);
    EXPECT_EQ(QByteArray(reinterpret_cast<const char*>(top), 9),
              QByteArray("\xFE\x00\xFF\xFF\x01\xFF\xFF\x00\xFE", 9));
    EXPECT_EQ(std::memcmp(frame.Row(0), picture.Row(0), 3072), 0);
    EXPECT_EQ(std::memcmp(top + 9, picture.Row(767) + 9, 3072 - 9), 0);
}

TEST(OverlayFrame, AFrameWithoutMagentaHidesThePicture) {
    cDIBSection frame = bitmapOf(filled(qRgb(9, 8, 7)));
    const cDIBSection before = bitmapOf(filled(qRgb(9, 8, 7)));
    OverlayFrame(frame, bitmapOf(filled(qRgb(200, 100, 50))));
    EXPECT_EQ(std::memcmp(frame.DIBSectionBitsPtr(), before.DIBSectionBitsPtr(),
                          size_t(before.ImageSize())),
              0);
}

class ApplyFrameTest : public TestEnvironment {};

TEST_F(ApplyFrameTest, AFrameThatCannotBeReadLeavesTheScreenImageItself) {
    auto screen = std::make_shared<cDIBSection>(bitmapOf(filled(qRgb(1, 2, 3))));
    EXPECT_EQ(ApplyFrame(QString(), screen), screen);
    EXPECT_EQ(ApplyFrame(root() + QStringLiteral("/gone.png"), screen), screen);
    const QString text = writeFile(QStringLiteral("frame.png"), "not a picture");
    EXPECT_EQ(ApplyFrame(text, screen), screen);
}

TEST_F(ApplyFrameTest, TheFrameIsReadAndLaidOver) {
    QImage frameImage = filled(qRgb(0, 0, 0));
    for (int y = 100; y < 200; ++y)
        for (int x = 100; x < 300; ++x)
            frameImage.setPixel(x, y, qRgb(255, 0, 255));
    const QString path = root() + QStringLiteral("/Frame One.PNG");
    ASSERT_TRUE(frameImage.save(path, "PNG"));
    auto screen = std::make_shared<cDIBSection>(bitmapOf(filled(qRgb(10, 20, 30))));
    const auto framed = ApplyFrame(path, screen);
    ASSERT_NE(framed, screen);
    auto pixel = [&](int x, int y) { // picture coordinates, as 0xRRGGBB
        const quint8* p = framed->Row(767 - y) + 3 * x;
        return (p[2] << 16) | (p[1] << 8) | p[0];
    };
    EXPECT_EQ(pixel(150, 150), 0x0A141E);
    EXPECT_EQ(pixel(50, 150), 0);
    EXPECT_EQ(screen->Row(0)[0], 30); // the screen image itself is untouched
}

} // namespace
