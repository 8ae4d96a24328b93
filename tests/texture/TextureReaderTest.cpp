#include "texture/TextureReader.h"

#include "app/BusyHost.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/cDIBSection.h"
#include "texture/Catalogue.h"
#include "texture/TextureWriter.h"

namespace {

// Textures written by Kelvaris itself and by nvcompress, read back.
class TextureReaderTest : public TestEnvironment, public ::testing::WithParamInterface<int> {
protected:
    // A 64 x 32 catalogue texture of the gradient, with a mask whose right
    // half is transparent (black); compression 0 none, 1 BC1, 2 BC3 (masked).
    QByteArray written(int compression) {
        const QString game = makeGame();
        cDIBSection picture, mask;
        picture.CreateFromPicture(GradientImage(64, 32));
        mask.Create(64, 32);
        for (long y = 0; y < 32; ++y)
            for (long x = 0; x < 32; ++x)
                mask.Row(y)[3 * x] = 255;
        const CatalogueEntry entry{"Icon", 64, 32, "texture_library/GUI", "icon"};
        FakeUi ui;
        HeadlessBusy busy;
        EXPECT_TRUE(WriteTexture(TextureRequest::CatalogueTexture(
                                     game, entry, picture, compression == 2 ? &mask : nullptr),
                                 MakeTextureContext(game, compression > 0), busy, ui));
        return readFile(game + QStringLiteral("/data/texture_library/GUI/icon.texture"));
    }
};

TEST_P(TextureReaderTest, ShowsWhatWasWritten) {
    const int compression = GetParam();
    const QByteArray whole = written(compression);
    const TexturePicture picture = ReadTexturePicture(whole);
    ASSERT_TRUE(picture.error.isEmpty()) << picture.error.toStdString();
    EXPECT_EQ(picture.format, QString::fromLatin1(compression == 0   ? "32-bit"
                                                  : compression == 1 ? "DXT1"
                                                                     : "DXT5"));
    EXPECT_EQ(picture.name, QStringLiteral("texture_library/GUI/icon.dds"));
    EXPECT_EQ(QSize(picture.announcedWidth, picture.announcedHeight), QSize(64, 32));
    ASSERT_EQ(picture.image.size(), QSize(64, 32));
    // Compressed textures keep the tool's mipmaps: 64 x 32 down to 1 x 1 in
    // seven levels, 173 blocks of 8 (BC1) or 16 (BC3) bytes.
    const QByteArray dds = TextureFile(whole).dds;
    if (compression > 0) {
        EXPECT_EQ(dds.size(), 128 + 173 * (compression == 2 ? 16 : 8));
        EXPECT_EQ(dds[28], 7); // the mipmap count
    }
    // Colours within what block compression keeps; the mask's halves.
    const QImage expected = GradientImage(64, 32);
    for (const QPoint at : {QPoint(5, 3), QPoint(60, 28), QPoint(33, 16)}) {
        const QRgb shown = picture.image.pixel(at), wanted = expected.pixel(at);
        EXPECT_NEAR(qRed(shown), qRed(wanted), 24);
        EXPECT_NEAR(qGreen(shown), qGreen(wanted), 24);
        EXPECT_NEAR(qBlue(shown), qBlue(wanted), 24);
    }
    EXPECT_EQ(qAlpha(picture.image.pixel(5, 5)), 255);
    EXPECT_EQ(qAlpha(picture.image.pixel(60, 5)), compression == 2 ? 0 : 255);

    // Every cut of the file is refused with a reason; compressed files end
    // padded to whole kilobytes, and a cut in the padding leaves them whole.
    for (qsizetype cut :
         {qsizetype(0), qsizetype(20), qsizetype(40), whole.size() / 2, whole.size() - 1})
        if (cut < whole.size() - 200 || compression == 0) {
            EXPECT_FALSE(ReadTexturePicture(whole.left(cut)).error.isEmpty()) << cut;
        }
}

INSTANTIATE_TEST_SUITE_P(Compression, TextureReaderTest, ::testing::Values(0, 1, 2));

TEST(TextureReader, HostileHeadersGiveAReason) {
    QByteArray dds("DDS ", 4);
    dds += QByteArray(124, '\0');
    auto put = [&dds](int at, quint32 value) {
        for (int i = 0; i < 4; ++i)
            dds[at + i] = char(value >> (8 * i));
    };
    put(12, 60000); // height
    put(16, 60000); // width
    EXPECT_TRUE(ReadTexturePicture(dds).error.contains(QStringLiteral("impossible size")));
    put(12, 4);
    put(16, 4);
    put(80, 4); // a block format nobody writes
    dds.replace(84, 4, "ATI2");
    EXPECT_TRUE(ReadTexturePicture(dds).error.contains(QStringLiteral("cannot be shown")));
    QByteArray container(32, '\0');
    container[0] = char(0xFF); // a header larger than the file
    EXPECT_FALSE(ReadTexturePicture(container).error.isEmpty());
    EXPECT_FALSE(ReadTextureFile(QStringLiteral("/dev/zero")).error.isEmpty());
}

} // namespace
