#include "app/BusyHost.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"

#include <QBuffer>
#include <QImage>

namespace {

QByteArray encoded(const QImage& image, const char* format) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    image.save(&buffer, format);
    return bytes;
}

// A 2 x 2 picture: red, green on top; blue, white below.
const QList<quint32> kFour = {0xFF0000, 0x00FF00, 0x0000FF, 0xFFFFFF};
const QByteArray kRed("\x00\x00\xFF", 3), kGreen("\x00\xFF\x00", 3), kBlue("\xFF\x00\x00", 3),
    kWhite("\xFF\xFF\xFF", 3);
const QByteArray kTga = TgaBytes(2, 2, 2, 24, 0x00, kBlue + kWhite + kRed + kGreen);
// The same picture as a GIF: a four-colour table, then 3-bit codes with a
// clear code before each pair of pixels, so no code table is built.
const QByteArray kGif("GIF89a\x02\0\x02\0\x81\0\0"
                      "\xFF\0\0\0\xFF\0\0\0\xFF\xFF\xFF\xFF"
                      ",\0\0\0\0\x02\0\x02\0\0"
                      "\x02\x03\x44\xA8\x15\0;",
                      42);
// A PNG declaring 60000 x 60000 whose data hold one row start.
const QByteArray kHugePng("\x89PNG\r\n\x1A\n\0\0\0\x0DIHDR\0\0\xEA\x60\0\0\xEA\x60\x08\x02\0\0\0"
                          "\x0F\xB0\xE2\x15\0\0\0\x0CIDAT\x78\x01\x01\x01\0\xFE\xFF\0\0\x01\0"
                          "\x01\xF7\x8D\x01\x51\0\0\0\0IEND\xAE\x42\x60\x82",
                          69);
const QImage kPicture = GradientImage(64, 48);
const QImage kFourImage = [] {
    QImage image(2, 2, QImage::Format_RGB32);
    for (int i = 0; i < 4; ++i)
        image.setPixel(i % 2, i / 2, kFour[i]);
    return image;
}();

class PictureLoadTest : public TestEnvironment {
protected:
    QString picture(const QString& name, const QByteArray& bytes) {
        return writeFile(QStringLiteral("pictures/") + name, bytes);
    }

    FakeUi ui;
    HeadlessBusy busy;
};

TEST_F(PictureLoadTest, AJpegDecodesCloseToItsPicture) {
    const QImage source = GradientImage(24, 16);
    const QImage decoded = DecodePicture(picture("My Photo.JPEG", encoded(source, "JPEG")));
    ASSERT_EQ(decoded.size(), source.size());
    int worst = 0;
    for (int y = 0; y < source.height(); ++y)
        for (int x = 0; x < source.width(); ++x) {
            const QRgb a = source.pixel(x, y), b = decoded.pixel(x, y);
            worst = std::max({worst, std::abs(qRed(a) - qRed(b)), std::abs(qGreen(a) - qGreen(b)),
                              std::abs(qBlue(a) - qBlue(b))});
        }
    EXPECT_LE(worst, 12);
}

// The lossless kinds, told by the name's ending in either letter case; TGA
// without the footer, in its variants. Pixels top row first.
TEST_F(PictureLoadTest, LosslessKindsDecodeToTheirPixels) {
    const struct {
        const char* name;
        QByteArray file;
        QList<quint32> pixels = kFour;
    } cases[] = {
        {"Upper Case.BMP", encoded(kFourImage, "BMP")},
        {"art.png", encoded(kFourImage, "PNG")},
        {"Anim Name.GIF", kGif},
        {"true colour, bottom row first.tga", kTga},
        {"32-bit, top row first.TGA",
         TgaBytes(2, 2, 2, 32, 0x28,
                  kRed + '\xFF' + kGreen + '\xFF' + kBlue + '\xFF' + kWhite + '\xFF')},
        {"run-length true colour.tga",
         TgaBytes(10, 3, 2, 24, 0x00,
                  QByteArray(1, '\x82') + kBlue + QByteArray(1, '\x02') + kRed + kGreen + kWhite),
         {0xFF0000, 0x00FF00, 0xFFFFFF, 0x0000FF, 0x0000FF, 0x0000FF}},
        {"run-length grey.TGA",
         TgaBytes(11, 2, 2, 8, 0x00, QByteArray("\x81\x50\x01\x11\x22", 5)),
         {0x111111, 0x222222, 0x505050, 0x505050}},
        {"colour-mapped.tga", TgaBytes(1, 2, 2, 8, 0x20, QByteArray("\x00\x01\x02\x03", 4),
                                       kRed + kGreen + kBlue + kWhite, 24)}};
    for (const auto& c : cases)
        EXPECT_EQ(PixelsOf(DecodePicture(picture(QString::fromLatin1(c.name), c.file))), c.pixels)
            << c.name;
}

QByteArray spoiled(QByteArray bytes, qsizetype at, const QByteArray& with) {
    return bytes.replace(at, with.size(), with);
}

// Bad files, and one that is not there: every one ends in the one message.
TEST_F(PictureLoadTest, BadPicturesEndInImageCouldNotBeLoaded) {
    const QByteArray bmp = encoded(kPicture, "BMP");
    const struct {
        const char* name;
        QByteArray file;
    } cases[] = {{"cut.bmp", bmp.left(bmp.size() * 6 / 10)},
                 // Without its end marker, Qt's reader would pad the picture out.
                 {"no-end.jpg", encoded(kPicture, "JPEG").chopped(2)},
                 {"no-end.png", encoded(kPicture, "PNG").chopped(12)},
                 {"cut-rle.tga", TgaBytes(10, 3, 2, 24, 0, QByteArray(1, '\x82') + kBlue + '\x02')},
                 {"header.png", spoiled(encoded(kPicture, "PNG"), 1, "QNG")},
                 {"Empty File.PNG", QByteArray()},
                 {"huge.png", kHugePng},
                 // Within the decoder's memory limit, but a few hundred bytes cannot
                 // hold that many pixels, even run-length encoded.
                 {"claims-big.tga", TgaBytes(2, 8000, 8000, 24, 0, QByteArray(400, 'x'))},
                 {"missing", {}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        const QString path = c.name == std::string("missing")
                                 ? root() + QStringLiteral("/pictures/none.png")
                                 : picture(QString::fromLatin1(c.name), c.file);
        cDIBSection dib;
        dib.Create(3, 3);
        dib.Row(0)[0] = 77;
        bool previewed = false;
        ui.messages.clear();
        EXPECT_FALSE(LoadImage(path, dib, 1024, 768, busy, ui,
                               [&](const cDIBSection&) { previewed = true; }));
        EXPECT_EQ(ui.messageTexts(), QStringList{"Image could not be loaded."});
        EXPECT_FALSE(previewed);
        EXPECT_FALSE(busy.IsBusy());
        EXPECT_EQ(dib.Row(0)[0], 77); // left as it was
    }
}

// The preview follows the screen's proportions, at most 425 and at least 10
// pixels wide, 240 when a size is blank, halves rounded to even.
TEST(PreviewWidth, FollowsTheScreenProportions) {
    const struct {
        const char *width, *height;
        int preview;
    } cases[] = {{"4000", "100", 425},
                 {"1", "1000", 10},
                 {"1280", "", 240},
                 {"9", "8", 202},
                 {"11", "8", 248}};
    for (const auto& c : cases)
        EXPECT_EQ(PreviewWidth(QString::fromLatin1(c.width), QString::fromLatin1(c.height)),
                  c.preview)
            << c.width << "x" << c.height;
}

} // namespace
