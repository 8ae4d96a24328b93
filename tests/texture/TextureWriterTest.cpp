#include "texture/TextureWriter.h"

#include "common/CaseName.h"
#include "common/FakeUi.h"
#include "common/RecordingBusy.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"
#include "texture/FileRecord.h"
#include "texture/ScreenTargets.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QtEndian>
#include <sys/stat.h>

namespace {

quint32 u32(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

const QString kLoginName = QStringLiteral(
    "texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.dds");

class TextureWriterTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = root() + QStringLiteral("/game");
        QDir().mkpath(game);
        context.workFolder = root() + QStringLiteral("/work");
        QDir().mkpath(context.workFolder);
        context.gameFolder = game;
    }

    QString loginFolder() const { return game + QString::fromLatin1(kLoginScreen.folder); }
    QString loginFile() const {
        return loginFolder() + QStringLiteral("COH_LogInScreen_Background.texture");
    }

    bool writeLogin(const cDIBSection& dib) {
        const QString file = QString::fromLatin1(kLoginScreen.file);
        return WriteTexture(loginFolder(), file, file, dib, 1024, 1024, true, 1024, 768,
                            QString::fromLatin1(kLoginScreen.texPath), false, nullptr, true,
                            context, busy, ui);
    }

    // A picture loaded from a JPEG to the screen size, as the Screens tab does.
    cDIBSection screenPicture() {
        QImage source = GradientImage(160, 120);
        const QString path = root() + QStringLiteral("/Screen Shot.JPG");
        source.save(path, "JPEG", 95);
        cDIBSection dib;
        EXPECT_TRUE(LoadImage(path, dib, 1024, 768, busy, ui));
        busy.calls.clear();
        return dib;
    }

    // Runs nvdecompress on the DDS bytes and reads the 32-bit TGA it writes,
    // alpha included (the picture decoder must read it too).
    QImage decompressed(const QByteArray& dds) {
        const QString ddsPath = root() + QStringLiteral("/check.dds");
        QFile file(ddsPath);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(dds);
        file.close();
        QProcess tool;
        tool.setWorkingDirectory(root());
        tool.start(QStringLiteral("nvdecompress"), {ddsPath});
        EXPECT_TRUE(tool.waitForFinished(60000));
        const QString tgaPath = root() + QStringLiteral("/check.tga");
        const QByteArray tga = readFile(tgaPath);
        if (tga.size() < 18 || tga[2] != 2 || tga[16] != 32)
            return {};
        const int width = quint8(tga[12]) | quint8(tga[13]) << 8;
        const int height = quint8(tga[14]) | quint8(tga[15]) << 8;
        const bool topFirst = tga[17] & 0x20;
        if (tga.size() < 18 + qsizetype(width) * height * 4)
            return {};
        EXPECT_EQ(DecodePicture(tgaPath).size(), QSize(width, height));
        QImage image(width, height, QImage::Format_ARGB32);
        const char* p = tga.constData() + 18;
        for (int r = 0; r < height; ++r)
            for (int x = 0; x < width; ++x, p += 4)
                image.setPixel(x, topFirst ? r : height - 1 - r,
                               qRgba(quint8(p[2]), quint8(p[1]), quint8(p[0]), quint8(p[3])));
        return image;
    }

    QString game;
    TextureContext context;
    FakeUi ui;
    RecordingBusy busy;
};

// ---- uncompressed --------------------------------------------------------------

TEST_F(TextureWriterTest, LoginScreenFromAJpegUncompressed) {
    const cDIBSection dib = screenPicture();
    ASSERT_TRUE(writeLogin(dib));
    EXPECT_TRUE(ui.messages.isEmpty());
    const QByteArray bytes = readFile(loginFile());

    const QByteArray name = kLoginName.toUtf8();
    const qsizetype headerSize = 32 + name.size() + 1;
    ASSERT_EQ(bytes.size(), headerSize + 128 + 1025 * 4096);
    EXPECT_EQ(u32(bytes, 0), quint32(headerSize));
    EXPECT_EQ(u32(bytes, 4), 4194432u);
    EXPECT_EQ(u32(bytes, 8), 1024u);
    EXPECT_EQ(u32(bytes, 12), 768u);
    EXPECT_EQ(bytes.mid(16, 16), QByteArray(12, '\0') + QByteArray("\0TX2", 4));
    EXPECT_EQ(bytes.mid(32, name.size() + 1), name + '\0');

    const QByteArray dds = bytes.mid(headerSize);
    const struct {
        int offset;
        quint32 value;
    } fields[] = {{0, 0x20534444},  {4, 124},          {8, 0x1007},       {12, 1024},
                  {16, 1024},       {20, 0},           {28, 0},           {76, 32},
                  {80, 0x41},       {84, 0},           {88, 32},          {92, 0x00FF0000},
                  {96, 0xFFFFFF00}, {100, 0x000000FF}, {104, 0xFF000000}, {108, 0x1000},
                  {112, 0},         {124, 0}};
    for (const auto& field : fields)
        EXPECT_EQ(u32(dds, field.offset), field.value) << "DDS header offset " << field.offset;

    // Row 0 is the top of the picture (memory row 767), then downwards.
    auto row = [&](int r) { return dds.mid(128 + r * 4096, 4096); };
    auto expectedRow = [&](long memoryRow) {
        QByteArray out;
        const quint8* p = dib.Row(memoryRow);
        for (int x = 0; x < 1024; ++x, p += 3)
            out += QByteArray(reinterpret_cast<const char*>(p), 3) + '\xFF';
        return out;
    };
    EXPECT_EQ(row(0), expectedRow(767));
    EXPECT_EQ(row(400), expectedRow(367));
    EXPECT_EQ(row(767), expectedRow(0));
    // The bottom row repeats down to the 1025th row: 257 copies.
    for (int r = 768; r <= 1024; ++r)
        ASSERT_EQ(row(r), expectedRow(0)) << "row " << r;

    EXPECT_EQ(busy.calls.first(),
              (RecordingBusy::Call{"busy", 1024, "Writing COH_LogInScreen_Background..."}));
    EXPECT_EQ(busy.calls.last().kind, QStringLiteral("idle"));
    // Only the texture itself is left in the folder.
    EXPECT_EQ(QDir(loginFolder()).entryList(QDir::Files),
              QStringList{QStringLiteral("COH_LogInScreen_Background.texture")});
}

TEST_F(TextureWriterTest, BareDdsWithAMaskAndANarrowBitmap) {
    cDIBSection dib, mask;
    dib.Create(3, 2);
    mask.Create(3, 2);
    for (long y = 0; y < 2; ++y)
        for (long x = 0; x < 3; ++x) {
            quint8* p = dib.Row(y) + 3 * x;
            p[0] = quint8(10 + x), p[1] = quint8(20 + y), p[2] = 30;
            mask.Row(y)[3 * x] = quint8(x * 100 + y); // only blue counts
        }
    const QString folder = game + QStringLiteral("/Kelvaris/RandomHL/");
    ASSERT_TRUE(WriteTexture(folder, QStringLiteral("coh"), QStringLiteral("pic 1"), dib, 4, 2,
                             false, 0, 0, QString(), true, &mask, true, context, busy, ui));
    const QByteArray bytes = readFile(folder + QStringLiteral("pic 1.dds"));
    ASSERT_EQ(bytes.size(), 128 + 2 * 16); // no container header, 2 rows as declared
    EXPECT_EQ(u32(bytes, 0), 0x20534444u);
    const QByteArray top = bytes.mid(128, 16);
    // Top row = memory row 1; alpha = mask blue; the fourth pixel stays zero.
    EXPECT_EQ(top, QByteArray("\x0A\x15\x1E\x01\x0B\x15\x1E\x65\x0C\x15\x1E\xC9\0\0\0\0", 16));
}

TEST_F(TextureWriterTest, TgaHeaderAndAlphaOpaqueWithoutMask) {
    cDIBSection dib;
    dib.Create(2, 1);
    dib.Row(0)[0] = 1;
    FileRecord record = OpenFileRecord(root() + QStringLiteral("/t.tga"), kGenericWrite,
                                       kShareReadWrite, kCreateAlways);
    ASSERT_NE(record.Handle, -1);
    WriteImageFile(record, dib, 2, 1, false, nullptr, true, busy);
    CloseFileRecord(record);
    const QByteArray bytes = readFile(root() + QStringLiteral("/t.tga"));
    EXPECT_EQ(bytes, QByteArray("\0\0\x02\0\0\0\0\0\0\0\0\0\x02\0\x01\0\x20\x2F"
                                "\x01\0\0\xFF\0\0\0\xFF",
                                26));
}

TEST_F(TextureWriterTest, CopyDdsToTextureAnnouncesTheFixedSize) {
    QByteArray dds(524416, '\0');
    for (qsizetype i = 0; i < dds.size(); ++i)
        dds[i] = char(i * 7);
    const QString source = writeFile(QStringLiteral("library/pick.dds"), dds);
    const QString folder =
        game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/");
    const QString texPath = QString::fromLatin1(kCharacterScreen.texPath);
    ASSERT_TRUE(CopyDdsToTexture(source, QStringLiteral("background"), folder, texPath));
    const QByteArray bytes = readFile(folder + QStringLiteral("background.texture"));
    const QByteArray header =
        TextureHeader(4194432, 1024, 768, texPath, QStringLiteral("background"));
    EXPECT_EQ(bytes.left(header.size()), header);
    EXPECT_EQ(u32(bytes, 4), 4194432u);
    EXPECT_EQ(bytes.mid(header.size()), dds);

    EXPECT_FALSE(CopyDdsToTexture(root() + QStringLiteral("/none.dds"), QStringLiteral("other"),
                                  folder, texPath));
    EXPECT_FALSE(QFile::exists(folder + QStringLiteral("other.texture")));
}

TEST(LongToString, LeastSignificantByteFirst) {
    EXPECT_EQ(LongToString(0x32585400), QByteArray("\0TX2", 4));
    EXPECT_EQ(LongToString(-1), QByteArray("\xFF\xFF\xFF\xFF", 4));
    EXPECT_EQ(LongToString(4194432), QByteArray("\x80\0\x40\0", 4));
}

// ---- refusals ------------------------------------------------------------------

struct Refusal {
    const char* name;
    const char* savePath; // below the test's root; "@" stands for the game folder
    const char* fileName;
};

class Refusals : public TextureWriterTest, public ::testing::WithParamInterface<Refusal> {};

TEST_P(Refusals, WriteNothing) {
    cDIBSection dib;
    dib.Create(4, 4);
    QString savePath = root() + u'/' + QString::fromLatin1(GetParam().savePath);
    savePath.replace(QStringLiteral("@"), QStringLiteral("game"));
    EXPECT_FALSE(WriteTexture(savePath, QStringLiteral("x"),
                              QString::fromLatin1(GetParam().fileName), dib, 4, 4, true, 4, 4,
                              QStringLiteral("t/"), false, nullptr, false, context, busy, ui))
        << GetParam().name;
    QStringList written;
    for (const QString& entry :
         QDir(root()).entryList(QDir::AllEntries | QDir::NoDotAndDotDot | QDir::Hidden))
        written << entry;
    written.removeAll(QStringLiteral("game"));
    for (const char* ours : {"work", "cache", "config"})
        written.removeAll(QString::fromLatin1(ours));
    EXPECT_TRUE(written.isEmpty()) << GetParam().name;
    EXPECT_TRUE(QDir(game).isEmpty()) << GetParam().name;
}

INSTANTIATE_TEST_SUITE_P(
    OutsideTheGame, Refusals,
    ::testing::Values(Refusal{"a name that climbs", "@/data/", "../../escape"},
                      Refusal{"a name with a folder", "@/data/", "sub/name"},
                      Refusal{"a folder that climbs", "@/data/../../elsewhere/", "name"},
                      Refusal{"a folder beside the game", "gameplay/", "name"}),
    CaseName<Refusal>);

TEST_F(TextureWriterTest, NoGameFolderWritesNothing) {
    cDIBSection dib;
    dib.Create(4, 4);
    context.gameFolder.clear();
    EXPECT_FALSE(writeLogin(dib));
}

TEST_F(TextureWriterTest, AReadOnlyTextureStaysAsItIs) {
    cDIBSection dib;
    dib.Create(1024, 768);
    QDir().mkpath(loginFolder());
    QFile old(loginFile());
    ASSERT_TRUE(old.open(QIODevice::WriteOnly));
    old.write("the player's own");
    old.close();
    ::chmod(QFile::encodeName(loginFile()).constData(), 0444);
    EXPECT_FALSE(writeLogin(dib));
    EXPECT_EQ(readFile(loginFile()), QByteArray("the player's own"));
    EXPECT_EQ(QDir(loginFolder()).entryList(QDir::Files).size(), 1);
}

TEST_F(TextureWriterTest, AGameFolderThatTakesNoFolders) {
    // A file where the data folder should be stops the write even for root.
    cDIBSection dib;
    dib.Create(1024, 768);
    writeFile(QStringLiteral("game/data"), "not a folder");
    EXPECT_FALSE(writeLogin(dib));
}

TEST_F(TextureWriterTest, AFolderInAnotherLetterCaseIsReused) {
    cDIBSection dib;
    dib.Create(1024, 768);
    const QString existing =
        game + QStringLiteral("/Data/Texture_Library/gui/creation/hybridui/loginscreen");
    QDir().mkpath(existing);
    writeFile(QStringLiteral("game/Data/Texture_Library/gui/creation/hybridui/loginscreen/"
                             "coh_loginscreen_background.texture"),
              "old");
    ASSERT_TRUE(writeLogin(dib));
    EXPECT_FALSE(QFileInfo::exists(game + QStringLiteral("/data")));
    const QStringList files = QDir(existing).entryList(QDir::Files);
    EXPECT_EQ(files, QStringList{QStringLiteral("coh_loginscreen_background.texture")});
    EXPECT_GT(QFileInfo(existing + u'/' + files.value(0)).size(), 4000000);
}

// ---- compressed, with the real nvcompress -------------------------------------

struct ScriptCase {
    const char* name;
    bool login;
    bool alpha;
    const char* options;
};

class ScriptCommands : public ::testing::TestWithParam<ScriptCase> {};

TEST_P(ScriptCommands, ChooseTheCompression) {
    const QByteArray script =
        CompressorScript(QStringLiteral("/tmp/it's here"), QStringLiteral("/usr/bin/nvcompress"),
                         GetParam().login, GetParam().alpha);
    EXPECT_EQ(script, QByteArray("#!/bin/sh\ncd '/tmp/it'\\''s here'\n'/usr/bin/nvcompress' ") +
                          GetParam().options + " temp_tga.tga temp_dds.dds>nvcompress.log\n");
}

INSTANTIATE_TEST_SUITE_P(Choices, ScriptCommands,
                         ::testing::Values(ScriptCase{"login", true, false, "-bc1 -nomips"},
                                           ScriptCase{"login with alpha", true, true,
                                                      "-bc1 -nomips"},
                                           ScriptCase{"alpha", false, true, "-bc3"},
                                           ScriptCase{"plain", false, false, "-bc1"}),
                         CaseName<ScriptCase>);

TEST_F(TextureWriterTest, LoginScreenCompressedByNvcompress) {
    const cDIBSection dib = screenPicture();
    context.compress = true;
    ASSERT_TRUE(writeLogin(dib));
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    const QByteArray bytes = readFile(loginFile());
    const qsizetype headerSize = u32(bytes, 0);
    const qint64 payload = u32(bytes, 4);
    // BC1 without mipmaps: 8 bytes a 4 x 4 block, after the 128-byte header.
    EXPECT_EQ(payload, 128 + 1024 * 1024 / 2);
    const qint64 padded = (payload + 1023) / 1024 * 1024;
    ASSERT_EQ(bytes.size(), headerSize + padded);
    EXPECT_EQ(bytes.mid(headerSize + payload), QByteArray(padded - payload, '\0'));
    EXPECT_EQ(u32(bytes, 8), 1024u);
    EXPECT_EQ(u32(bytes, 12), 768u);

    const QByteArray dds = bytes.mid(headerSize, payload);
    EXPECT_EQ(dds.mid(84, 4), QByteArray("DXT1"));
    const QImage back = decompressed(dds);
    ASSERT_EQ(back.size(), QSize(1024, 1024));
    // BC1 may turn a few blocks transparent black: compare the others.
    int worst = 0, compared = 0, sampled = 0;
    for (int y = 0; y < 1024; y += 37)
        for (int x = 0; x < 1024; x += 41) {
            const quint8* p = dib.Row(767 - std::min(y, 767)) + 3 * x;
            const QRgb c = back.pixel(x, y);
            ++sampled;
            if (qAlpha(c) == 0)
                continue;
            ++compared;
            worst = std::max({worst, std::abs(qBlue(c) - p[0]), std::abs(qGreen(c) - p[1]),
                              std::abs(qRed(c) - p[2])});
        }
    EXPECT_LE(worst, 24);
    EXPECT_GT(compared, sampled * 9 / 10);

    for (const char* temporary : {"nvtemp.sh", "temp_tga.tga", "temp_dds.dds"})
        EXPECT_FALSE(QFile::exists(context.workFolder + u'/' + QString::fromLatin1(temporary)));
    EXPECT_TRUE(QFile::exists(context.workFolder + QStringLiteral("/nvcompress.log")));
}

struct MipCase {
    const char* name;
    bool alpha;
    const char* fourCC;
    qint64 blockBytes;
};

class CompressedTextures : public TextureWriterTest,
                           public ::testing::WithParamInterface<MipCase> {};

TEST_P(CompressedTextures, CarryMipmaps) {
    cDIBSection dib, mask;
    dib.CreateFromPicture(GradientImage(64, 64));
    mask.Create(64, 64);
    for (long y = 0; y < 64; ++y)
        for (long x = 0; x < 64; ++x)
            mask.Row(y)[3 * x] = x < 32 ? 0 : 255; // left half transparent
    context.compress = true;
    const QString folder = game + QStringLiteral("/data/texture_library/GUI/Icons/");
    ASSERT_TRUE(WriteTexture(folder, QStringLiteral("icon"), QStringLiteral("icon"), dib, 64, 64,
                             true, 64, 64, QStringLiteral("texture_library/GUI/Icons/"),
                             GetParam().alpha, &mask, false, context, busy, ui));
    const QByteArray bytes = readFile(folder + QStringLiteral("icon.texture"));
    const qsizetype headerSize = u32(bytes, 0);
    const qint64 payload = u32(bytes, 4);
    // 64, 32, 16, 8, 4, 2 and 1 pixels: 256 + 64 + 16 + 4 + 1 + 1 + 1 blocks.
    EXPECT_EQ(payload, 128 + 343 * GetParam().blockBytes);
    const QByteArray dds = bytes.mid(headerSize, payload);
    EXPECT_EQ(dds.mid(84, 4), QByteArray(GetParam().fourCC));
    EXPECT_EQ(u32(dds, 28), 7u);
    const QImage back = decompressed(dds);
    ASSERT_EQ(back.size(), QSize(64, 64));
    if (GetParam().alpha) {
        EXPECT_LE(qAlpha(back.pixel(5, 5)), 8);
        EXPECT_GE(qAlpha(back.pixel(60, 5)), 247);
    }
    EXPECT_NEAR(qRed(back.pixel(60, 30)), 60 * 255 / 63, 16);
    EXPECT_NEAR(qGreen(back.pixel(60, 30)), 30 * 255 / 63, 16);
}

INSTANTIATE_TEST_SUITE_P(Kinds, CompressedTextures,
                         ::testing::Values(MipCase{"alpha BC3", true, "DXT5", 16},
                                           MipCase{"opaque BC1", false, "DXT1", 8}),
                         CaseName<MipCase>);

TEST_F(TextureWriterTest, AMissingCompressorWritesNoTexture) {
    cDIBSection dib;
    dib.Create(1024, 768);
    context.compress = true;
    context.compressor = root() + QStringLiteral("/no/nvcompress");
    // A result of an earlier run must not be taken for this one's.
    writeFile(QStringLiteral("work/temp_dds.dds"), QByteArray(600, 'x'));
    EXPECT_FALSE(writeLogin(dib));
    EXPECT_EQ(ui.messageTexts(),
              QStringList{QStringLiteral(
                  "Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.")});
    EXPECT_EQ(ui.messages.value(0).icon, MsgIcon::Critical);
    EXPECT_FALSE(QFileInfo::exists(loginFile()));
    EXPECT_FALSE(busy.busy);
}

TEST_F(TextureWriterTest, ACompressorThatNeverEndsTimesOut) {
    const QString standIn =
        writeFile(QStringLiteral("tools/nvcompress"), "#!/bin/sh\nexec sleep 20\n");
    QFile::setPermissions(standIn, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    cDIBSection dib;
    dib.Create(64, 64);
    context.compress = true;
    context.compressor = standIn;
    context.toolTimeOut = 300;
    EXPECT_FALSE(writeLogin(dib));
    EXPECT_EQ(ui.messageTexts(),
              (QStringList{QStringLiteral("The NVIDIA tool has timed out."),
                           QStringLiteral("Error calling the NVIDIA tool!\r\nPlease disable "
                                          "Texture Compression.")}));
    EXPECT_EQ(ui.messages.value(0).icon, MsgIcon::Exclamation);
    EXPECT_FALSE(QFileInfo::exists(loginFile()));
}

TEST_F(TextureWriterTest, TheCompressorIsLookedForBesideTheProgramThenOnPath) {
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", "");
    EXPECT_EQ(FindCompressor(), QString());
    qputenv("PATH", path);
    EXPECT_EQ(FindCompressor(), QStringLiteral("/usr/bin/nvcompress"));
}

} // namespace
