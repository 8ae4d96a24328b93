#include "texture/TextureWriter.h"

#include "app/BusyHost.h"
#include "common/CaseName.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/LoadImage.h"
#include "image/cDIBSection.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureReader.h"

#include <QDir>

namespace {

const QString kNvError = "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.";

class TextureWriterTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        context.gameFolder = game = makeGame();
        context.workFolder = root() + "/work";
        QDir().mkpath(context.workFolder);
        dib.Create(64, 64);
    }

    QString loginFolder() const { return game + QString::fromLatin1(kLoginScreen.folder); }
    QString loginFile() const { return loginFolder() + "COH_LogInScreen_Background.texture"; }
    bool writeLogin() {
        return WriteTexture(TextureRequest::Screen(kLoginScreen, game, dib), context, busy, ui);
    }

    // A JPEG loaded to the screen size, as the Screens tab does.
    void loadScreenPicture() {
        const QString path = root() + "/Screen Shot.JPG";
        GradientImage(160, 120).save(path, "JPEG", 95);
        ASSERT_TRUE(LoadImage(path, dib, 1024, 768, busy, ui));
    }

    QString game;
    cDIBSection dib;
    TextureContext context;
    FakeUi ui;
    HeadlessBusy busy;
};

// The texture already there, in another letter case, is replaced in place.
TEST_F(TextureWriterTest, LoginScreenUncompressedRepeatsItsBottomRowTo1025Rows) {
    const QString existing = "game/Data/Texture_Library/gui/creation/hybridui/loginscreen/";
    writeFile(existing + "coh_loginscreen_background.texture", "old");
    loadScreenPicture();
    ASSERT_TRUE(writeLogin());
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(game + "/data"));
    EXPECT_EQ(QDir(root() + u'/' + existing).entryList(QDir::Files),
              QStringList{"coh_loginscreen_background.texture"});
    const QByteArray bytes =
        readFile(root() + u'/' + existing + "coh_loginscreen_background.texture");
    const TextureFile texture(bytes);
    EXPECT_EQ(texture.name, "texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                            "COH_LogInScreen_Background.dds");
    EXPECT_EQ(QSize(int(texture.width), int(texture.height)), QSize(1024, 768));
    ASSERT_EQ(bytes.size(), texture.headerSize + 128 + 1025 * 4096);
    EXPECT_EQ(texture.payloadSize, 128u + 1024 * 4096);

    // Rows top first (memory row 767 first); the bottom row fills rows 768 to 1024.
    auto expectedRow = [&](long memoryRow) {
        QByteArray out;
        for (const quint8 *p = dib.Row(memoryRow), *end = p + 3 * 1024; p < end; p += 3)
            out += QByteArray(reinterpret_cast<const char*>(p), 3) + '\xFF';
        return out;
    };
    const QByteArray dds = bytes.mid(texture.headerSize);
    EXPECT_EQ(dds.left(4), QByteArray("DDS "));
    EXPECT_EQ(dds.mid(128, 4096), expectedRow(767));
    EXPECT_EQ(dds.mid(128 + 400 * 4096, 4096), expectedRow(367));
    for (int r = 767; r <= 1024; ++r)
        ASSERT_EQ(dds.mid(128 + r * 4096, 4096), expectedRow(0)) << "row " << r;
}

TEST_F(TextureWriterTest, BareDdsTakesAlphaFromTheMaskBlueAndPadsANarrowBitmap) {
    cDIBSection mask;
    dib.Create(3, 2);
    mask.Create(3, 2);
    for (long y = 0; y < 2; ++y)
        for (long x = 0; x < 3; ++x) {
            quint8* p = dib.Row(y) + 3 * x;
            p[0] = quint8(10 + x), p[1] = quint8(20 + y), p[2] = 30;
            mask.Row(y)[3 * x] = quint8(x * 100 + y); // only blue counts
        }
    const QString folder = game + "/Kelvaris/RandomHL/";
    TextureRequest request = TextureRequest::LibraryEntry(folder, "pic 1", dib);
    request.Width = 4;
    request.Height = 2;
    request.Alpha = true;
    request.cDibAlpha = &mask;
    ASSERT_TRUE(WriteTexture(request, context, busy, ui));
    const QByteArray bytes = readFile(folder + "pic 1.dds");
    ASSERT_EQ(bytes.size(), 128 + 2 * 16); // no container header
    EXPECT_EQ(bytes.mid(128, 16),
              QByteArray("\x0A\x15\x1E\x01\x0B\x15\x1E\x65\x0C\x15\x1E\xC9\0\0\0\0", 16));
}

struct Refusal {
    const char* name;
    const char* savePath; // below the test's root
    const char* fileName;
    bool noGameFolder = false;
    bool dataIsAFile = false;
};

class Refusals : public TextureWriterTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(Refusals, WriteNothing) {
    const Refusal& c = GetParam();
    if (c.noGameFolder)
        context.gameFolder.clear();
    if (c.dataIsAFile)
        writeFile("game/data", "not a folder");
    TextureRequest request;
    request.SavePath = root() + u'/' + QString::fromLatin1(c.savePath);
    request.FileName = QString::fromLatin1(c.fileName);
    request.SaveFile = "x";
    request.texPath = "t/";
    request.cDib = &dib;
    request.Width = request.Height = request.texWidth = request.texHeight = 4;
    EXPECT_FALSE(WriteTexture(request, context, busy, ui));
    QStringList written = QDir(root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot);
    for (const char* ours : {"work", "cache", "config"})
        written.removeAll(QString::fromLatin1(ours));
    EXPECT_EQ(written, QStringList{"game"});
    EXPECT_EQ(QDir(game).entryList(QDir::AllEntries | QDir::NoDotAndDotDot).size(),
              c.dataIsAFile ? 1 : 0);
}

INSTANTIATE_TEST_SUITE_P(
    OutsideTheGame, Refusals,
    ::testing::Values(
        Refusal{"a name that climbs", "game/data/texture_library/", "../../escape"},
        Refusal{"a folder that climbs", "game/data/texture_library/../../../elsewhere/", "n"},
        Refusal{"no game folder", "game/data/texture_library/", "name", true},
        Refusal{"a file for the data folder", "game/data/texture_library/", "name", false, true},
        // Inside the game but not where textures go.
        Refusal{"the music folder", "game/data/sound/Ogg/", "name"},
        Refusal{"beside the texture folder", "game/data/texture_library_old/", "name"}),
    CaseName<Refusal>);

TEST_F(TextureWriterTest, AReadOnlyTextureStaysAsItIs) {
    writeFile("game" + QString::fromLatin1(kLoginScreen.folder) +
                  "COH_LogInScreen_Background.texture",
              "the player's own");
    QFile::setPermissions(loginFile(), QFile::ReadOwner | QFile::ReadGroup | QFile::ReadOther);
    EXPECT_FALSE(writeLogin());
    EXPECT_EQ(readFile(loginFile()), QByteArray("the player's own"));
    EXPECT_EQ(QDir(loginFolder()).entryList(QDir::Files).size(), 1);
}

// The work folder's name needs quoting for nvcompress's shell script.
TEST_F(TextureWriterTest, LoginScreenCompressedByNvcompress) {
    loadScreenPicture();
    context.compress = true;
    context.workFolder = root() + "/work it's";
    QDir().mkpath(context.workFolder);
    ASSERT_TRUE(writeLogin());
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    const QByteArray bytes = readFile(loginFile());
    const TextureFile texture(bytes);
    const qint64 payload = texture.payloadSize;
    EXPECT_EQ(payload, 128 + 1024 * 1024 / 2); // BC1, no mipmaps
    const qint64 padded = (payload + 1023) / 1024 * 1024;
    ASSERT_EQ(bytes.size(), texture.headerSize + padded);
    EXPECT_EQ(bytes.mid(texture.headerSize + payload), QByteArray(padded - payload, '\0'));
    EXPECT_EQ(texture.dds.mid(84, 4), QByteArray("DXT1"));
    const QImage back = ReadTexturePicture(texture.dds).image;
    ASSERT_EQ(back.size(), QSize(1024, 1024));
    // BC1 may turn a few blocks transparent black: compare the others.
    int worst = 0, compared = 0, sampled = 0;
    for (int y = 0; y < 1024; y += 37)
        for (int x = 0; x < 1024; x += 41, ++sampled) {
            const quint8* p = dib.Row(767 - std::min(y, 767)) + 3 * x;
            const QRgb c = back.pixel(x, y);
            if (qAlpha(c) == 0)
                continue;
            ++compared;
            worst = std::max({worst, std::abs(qBlue(c) - p[0]), std::abs(qGreen(c) - p[1]),
                              std::abs(qRed(c) - p[2])});
        }
    EXPECT_LE(worst, 24);
    EXPECT_GT(compared, sampled * 9 / 10);
    EXPECT_EQ(QDir(context.workFolder).entryList(QDir::Files), QStringList{"nvcompress.log"});
}

// A compressor that is missing, or never ends, writes no texture; a result
// an earlier run left is not taken for this one's.
TEST_F(TextureWriterTest, AMissingOrHangingCompressorWritesNoTexture) {
    context.compress = true;
    context.compressor = root() + "/no/nvcompress";
    writeFile("work/temp_dds.dds", QByteArray(600, 'x'));
    EXPECT_FALSE(writeLogin());
    context.compressor = writeFile("tools/nvcompress", "#!/bin/sh\nexec sleep 20\n");
    QFile::setPermissions(context.compressor, QFile::ReadOwner | QFile::ExeOwner);
    context.toolTimeOut = 300;
    EXPECT_FALSE(writeLogin());
    EXPECT_EQ(ui.messageTexts(),
              (QStringList{kNvError, "The NVIDIA tool has timed out.", kNvError}));
    EXPECT_EQ(ui.messages.value(0).icon, MsgIcon::Critical);
    EXPECT_FALSE(QFileInfo::exists(loginFile()));
    EXPECT_FALSE(busy.IsBusy());
}

} // namespace
