#include "app/BusyHost.h"
#include "common/CaseName.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"

#include <QBuffer>
#include <QImage>
#include <functional>

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

// ---- the lossless kinds, whatever the letter case of the name ----------------

// TGA comes without the footer, in its variants.
struct TgaCase {
    const char* name; // the file's name: told by its ending, in either letter case
    QByteArray file;
    QList<quint32> pixels; // top row first
};

class Lossless : public PictureLoadTest, public ::testing::WithParamInterface<TgaCase> {};

TEST_P(Lossless, DecodeToTheirPixels) {
    const QImage decoded =
        DecodePicture(picture(QString::fromLatin1(GetParam().name), GetParam().file));
    EXPECT_EQ(PixelsOf(decoded), GetParam().pixels);
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, Lossless,
    ::testing::Values(TgaCase{"Upper Case.BMP", encoded(kFourImage, "BMP"), kFour},
                      TgaCase{"art.png", encoded(kFourImage, "PNG"), kFour},
                      TgaCase{"Anim Name.GIF", kGif, kFour},
                      TgaCase{"true colour, bottom row first.tga", kTga, kFour},
                      TgaCase{"32-bit, top row first.TGA",
                              TgaBytes(2, 2, 2, 32, 0x28,
                                       kRed + '\xFF' + kGreen + '\xFF' + kBlue + '\xFF' + kWhite +
                                           '\xFF'),
                              kFour},
                      TgaCase{"run-length true colour.tga",
                              TgaBytes(10, 3, 2, 24, 0x00,
                                       QByteArray(1, '\x82') + kBlue + QByteArray(1, '\x02') +
                                           kRed + kGreen + kWhite),
                              {0xFF0000, 0x00FF00, 0xFFFFFF, 0x0000FF, 0x0000FF, 0x0000FF}},
                      TgaCase{"run-length grey.TGA",
                              TgaBytes(11, 2, 2, 8, 0x00, QByteArray("\x81\x50\x01\x11\x22", 5)),
                              {0x111111, 0x222222, 0x505050, 0x505050}},
                      TgaCase{"colour-mapped.tga",
                              TgaBytes(1, 2, 2, 8, 0x20, QByteArray("\x00\x01\x02\x03", 4),
                                       kRed + kGreen + kBlue + kWhite, 24),
                              kFour}),
    CaseName<TgaCase>);

// ---- bad files: every one ends in the one message ---------------------------

struct BadCase {
    const char* name;
    std::function<QByteArray()> make; // null: the file is not there at all
};

class BadPictures : public PictureLoadTest, public ::testing::WithParamInterface<BadCase> {};

TEST_P(BadPictures, EndInImageCouldNotBeLoaded) {
    const QString path = GetParam().make
                             ? picture(QString::fromLatin1(GetParam().name), GetParam().make())
                             : root() + QStringLiteral("/pictures/none.png");
    cDIBSection dib;
    dib.Create(3, 3);
    dib.Row(0)[0] = 77;
    bool previewed = false;
    EXPECT_FALSE(
        LoadImage(path, dib, 1024, 768, busy, ui, [&](const cDIBSection&) { previewed = true; }));
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image could not be loaded."});
    EXPECT_FALSE(previewed);
    EXPECT_FALSE(busy.IsBusy());
    EXPECT_EQ(dib.Row(0)[0], 77); // left as it was
}

QByteArray cut(const QByteArray& bytes) {
    return bytes.left(bytes.size() * 6 / 10);
}

QByteArray spoiled(QByteArray bytes, qsizetype at, const QByteArray& with) {
    return bytes.replace(at, with.size(), with);
}

INSTANTIATE_TEST_SUITE_P(
    Bad, BadPictures,
    ::testing::Values(
        BadCase{"cut.bmp", [] { return cut(encoded(kPicture, "BMP")); }},
        // Without its end marker, Qt's reader would pad the picture out.
        BadCase{"no-end.jpg", [] { return encoded(kPicture, "JPEG").chopped(2); }},
        BadCase{"no-end.png", [] { return encoded(kPicture, "PNG").chopped(12); }},
        BadCase{"cut-rle.tga",
                [] { return TgaBytes(10, 3, 2, 24, 0, QByteArray(1, '\x82') + kBlue + '\x02'); }},
        BadCase{"header.png", [] { return spoiled(encoded(kPicture, "PNG"), 1, "QNG"); }},
        BadCase{"Empty File.PNG", [] { return QByteArray(); }},
        BadCase{"huge.png", [] { return kHugePng; }},
        // Within the decoder's memory limit, but a few hundred bytes cannot
        // hold that many pixels, even run-length encoded.
        BadCase{"claims-big.tga",
                [] { return TgaBytes(2, 8000, 8000, 24, 0, QByteArray(400, 'x')); }},
        BadCase{"missing", nullptr}),
    CaseName<BadCase>);

// ---- the loading steps ------------------------------------------------------

TEST_F(PictureLoadTest, ResamplesToTheAskedSizeAndPreviewsIt) {
    const QString path = picture("Sunset Beach.png", encoded(kPicture, "PNG"));
    cDIBSection dib;
    int previewWidth = 0;
    ASSERT_TRUE(LoadImage(path, dib, 100, 30, busy, ui,
                          [&](const cDIBSection& image) { previewWidth = int(image.Width()); }));
    EXPECT_EQ(QSize(int(dib.Width()), int(dib.Height())), QSize(100, 30));
    EXPECT_EQ(previewWidth, 100);
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_FALSE(busy.IsBusy());
}

struct WidthCase {
    const char* name;
    const char* width;
    const char* height;
    int preview;
};

class PreviewWidthTest : public ::testing::TestWithParam<WidthCase> {};

TEST_P(PreviewWidthTest, FollowsTheScreenProportions) {
    EXPECT_EQ(
        PreviewWidth(QString::fromLatin1(GetParam().width), QString::fromLatin1(GetParam().height)),
        GetParam().preview);
}

INSTANTIATE_TEST_SUITE_P(Sizes, PreviewWidthTest,
                         ::testing::Values(WidthCase{"at most 425", "4000", "100", 425},
                                           WidthCase{"at least 10", "1", "1000", 10},

                                           WidthCase{"blank", "1280", "", 240},
                                           WidthCase{"202.5 to even", "9", "8", 202},
                                           WidthCase{"247.5 to even", "11", "8", 248}),
                         CaseName<WidthCase>);

} // namespace
