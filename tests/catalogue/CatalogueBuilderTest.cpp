#include "texture/CatalogueBuilder.h"

#include "app/BusyHost.h"
#include "catalogue/TestArchive.h"
#include "common/TestEnvironment.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/CatalogueWriter.h"

#include <QMap>
#include <QSet>
#include <sys/resource.h>
#include <utility>

namespace {

const QString kPowers = "texture_library/GUI/Icons/Powers/";

class CatalogueBuilderTest : public TestEnvironment {
protected:
    QString game() const { return root() + "/CoH"; }

    void writeArchive(const QString& relative, const QList<TestArchiveEntry>& entries) const {
        writeFile("CoH/" + relative, MakeTestArchive(entries));
    }

    // Two archives in the usual "piggs" folder and one in an older place,
    // names in mixed letter case, one texture in two archives, one without
    // the "TX2" mark.
    void writeGame() const {
        writeArchive("piggs/texture_gui.pigg",
                     {{kPowers + "Archery_Aim.texture", MakeTestTexture(32, 32), true},
                      {"Texture_Library/gui/icons/POWERS/blast.texture", MakeTestTexture(64, 64)},
                      {"texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                       "COH_LogInScreen_Background.texture",
                       MakeTestTexture(1024, 1024, false), true},
                      {"texture_library/GUI/Icons/readme.txt", "text"}});
        writeArchive("piggs/TEXTURE_LIBRARY.PIGG",
                     {{"texture_library/gui/icons/powers/archery_aim.texture",
                       MakeTestTexture(16, 16), true},
                      {"texture_library/WORLD/Rock.texture", MakeTestTexture(8, 8), true},
                      {"texture_library/GUI/Aardvark.texture", MakeTestTexture(8, 4), true}});
        writeArchive("old/Extra.Pigg", {{"texture_library/GUI/Icons/Zebra/Stripe.texture",
                                         MakeTestTexture(128, 256), true}});
        writeFile("config/kelvaris/kelvaris.csv", "0\r\n");
    }

    QByteArray catalogue() const { return readFile(UserCatalogueFile()); }
};

TEST_F(CatalogueBuilderTest, ListsEveryInterfaceTextureOnceInNameOrder) {
    writeGame();
    writeFile("CoH/piggs/notes.txt", "not an archive");
    HeadlessBusy host;
    long lastProgress = -1;
    host.onProgress = [&](long value) { lastProgress = value; };
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_TRUE(result.written);
    // Five from the archives, and the shipped character-creation background.
    EXPECT_EQ(result.message, "6 textures in 5 categories");
    EXPECT_FALSE(host.IsBusy());
    EXPECT_EQ(lastProgress, 5);

    const CatalogueContents back = ReadCatalogue(UserCatalogueFile());
    ASSERT_EQ(back.error, QString());
    QStringList lines;
    for (const CatalogueCategory& category : back.categories)
        for (const CatalogueEntry& e : category.entries)
            lines << QStringLiteral("%1|%2 %3x%4|%5/%6")
                         .arg(category.name, e.name)
                         .arg(e.width)
                         .arg(e.height)
                         .arg(e.folder, e.file);
    EXPECT_EQ(lines.join(u'\n').toStdString(),
              QStringList({"GUI|Aardvark 8x4|texture_library/GUI/Aardvark",
                           "GUI/CREATION/HybridUI/CharacterCreationUI|Character creation "
                           "1024x1024|texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/"
                           "background",
                           "GUI/CREATION/HybridUI/LoginScreen|COH_LogInScreen_Background "
                           "1024x1024|texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                           "COH_LogInScreen_Background",
                           "GUI/Icons/Powers|Archery_Aim 32x32|" + kPowers + "Archery_Aim",
                           "GUI/Icons/Powers|blast 64x64|Texture_Library/gui/icons/POWERS/blast",
                           "GUI/Icons/Zebra|Stripe 128x256|texture_library/GUI/Icons/Zebra/Stripe"})
                  .join(u'\n')
                  .toStdString());
}

TEST_F(CatalogueBuilderTest, WithoutArchivesOrInterfaceTexturesNothingChanges) {
    writeFile("config/kelvaris/kelvaris.csv", "0\r\n");
    writeFile("CoH/piggs/readme.txt", "no archives here");
    HeadlessBusy host;
    for (const QString& folder : QStringList{game(), root() + "/missing", QString()}) {
        const CatalogueBuildResult result = BuildCatalogueFromGame(folder, host);
        EXPECT_FALSE(result.written);
        EXPECT_EQ(result.message, "No game archives were found in the game folder.");
    }
    writeArchive("piggs/texture_world.pigg",
                 {{"texture_library/WORLD/Rock.texture", MakeTestTexture(8, 8), true}});
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_FALSE(result.written);
    EXPECT_TRUE(result.message.startsWith("No interface textures were found"));
    EXPECT_EQ(catalogue(), QByteArray("0\r\n"));
}

TEST_F(CatalogueBuilderTest, CancellingOrABusyHostKeepsTheOldCatalogue) {
    writeGame();
    for (long cancelAt : {1L, 5L}) { // while reading directories, while reading sizes
        HeadlessBusy host;
        host.onProgress = [&](long value) {
            if (value == cancelAt)
                host.RequestCancel();
        };
        const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
        EXPECT_FALSE(result.written);
        EXPECT_TRUE(result.message.contains("cancelled")) << cancelAt;
        EXPECT_FALSE(host.IsBusy());
    }
    HeadlessBusy busy;
    busy.SetBusy(true, false, 0, QString());
    EXPECT_EQ(BuildCatalogueFromGame(game(), busy).message, QString());
    EXPECT_TRUE(busy.IsBusy());
    EXPECT_EQ(catalogue(), QByteArray("0\r\n"));
}

TEST_F(CatalogueBuilderTest, DamagedArchivesAndTexturesAreReportedAndPassedOver) {
    writeGame();
    QByteArray broken = MakeTestArchive({{kPowers + "Lost.texture", MakeTestTexture(8, 8), true}});
    PutU32(broken, 12, 0xFFFFFFFF);
    writeFile("CoH/piggs/broken.pigg", broken);
    // A FIFO among the archives, and a link to it, are passed over unread.
    const QString fifo = game() + "/piggs/waiting.pigg";
    ASSERT_TRUE(makeFifo(fifo));
    QFile::link(fifo, game() + "/piggs/link.pigg");
    QByteArray headless = MakeTestTexture(8, 8, false);
    headless.replace("DDS ", "XXXX");
    // An old texture whose long internal name pushes its DDS header far out.
    QByteArray longName = MakeTestTexture(300, 200, false);
    longName.insert(32, QByteArray(1000, 'n'));
    PutU32(longName, 0, quint32(longName.indexOf("DDS ")));
    // File names the catalogue cannot hold, in plain ASCII and beyond.
    writeArchive("piggs/zz.pigg", {{kPowers + "LongName.texture", longName, true},
                                   {kPowers + "NoSize.texture", headless},
                                   {kPowers + "Quote\".texture", MakeTestTexture(8, 8)},
                                   {kPowers + "...texture", MakeTestTexture(8, 8)},
                                   {kPowers + "C:drive.texture", MakeTestTexture(8, 8)},
                                   {kPowers + "Tab\t.texture", MakeTestTexture(8, 8)},
                                   {kPowers + "Épée\".texture", MakeTestTexture(8, 8), true}});

    HeadlessBusy host;
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_TRUE(result.written);
    const QStringList lines = result.message.split(u'\n');
    ASSERT_EQ(lines.size(), 3) << result.message.toStdString();
    EXPECT_EQ(lines[0], "7 textures in 5 categories");
    EXPECT_TRUE(lines[1].endsWith("broken.pigg\" is damaged: its directory of 4294967295 entries "
                                  "runs past the end of the file."));
    EXPECT_EQ(lines[2], "6 textures were left out: their size or name could not be read.");
    EXPECT_TRUE(catalogue().contains("\"LongName\",300,200,"));
}

// Thousands of textures, read in several runs on every core: folders
// interleaved and first spelled in capitals, names in mixed letter case (some
// alike in their first 16 characters, some beyond ASCII), and a second archive
// repeating half of the first in other letter case.
TEST_F(CatalogueBuilderTest, AGameOfThousandsOfTexturesIsListedWholeAndInOrder) {
    const auto name = [](int i) -> QString {
        const QString stem = i % 3 == 0 ? "Long_Texture_Name_%1" : i % 3 == 1 ? "tex_%1" : "TEX_%1";
        return (i % 100 == 5 ? QStringLiteral("Épée_") : QString()) + stem.arg(i);
    };
    QList<TestArchiveEntry> first;
    QList<TestArchiveEntry> second;
    for (int i = 0; i < 1800; ++i) {
        const QString path = QStringLiteral("texture_library/GUI/%1%2/%3.texture")
                                 .arg(i < 7 ? "FOLDER" : "Folder")
                                 .arg(i % 7)
                                 .arg(name(i));
        first.append({path, MakeTestTexture(8 + i % 9, 8), i % 2 == 0});
        if (i < 900)
            second.append({path.toLower(), MakeTestTexture(4, 4), true});
    }
    for (int i = 1800; i < 1900; ++i)
        second.append({kPowers + name(i) + ".texture", MakeTestTexture(4, 4), false});
    // Named as the shipped catalogue's "Archery Aim", in other spellings of
    // its folder: equal names are ordered by folder, then by file.
    second.append({"texture_library/gui/icons/powers/Archery Aim.texture", MakeTestTexture(4, 4)});
    second.append({"Texture_Library/GUI/Icons/Powers/archery aim.texture", MakeTestTexture(4, 4)});
    writeArchive("piggs/a.pigg", first);
    writeArchive("piggs/b.pigg", second);
    writeFile("config/kelvaris/kelvaris.csv", "0\r\n");

    HeadlessBusy host;
    // The window's events run only while it is busy (and locked).
    host.onProgress = [&host](long) { EXPECT_TRUE(host.IsBusy()); };
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    ASSERT_TRUE(result.written) << result.message.toStdString();
    qsizetype shipped = 0;
    for (const CatalogueCategory& category : ReadCatalogue(ShippedCatalogueFile()).categories)
        shipped += category.entries.size();
    EXPECT_TRUE(result.message.startsWith(QStringLiteral("%1 textures in ").arg(1901 + shipped)))
        << result.message.toStdString();

    const CatalogueContents back = ReadCatalogue(UserCatalogueFile());
    ASSERT_EQ(back.error, QString());
    // Every line as the catalogue writer puts the same categories into text.
    const QString again = root() + "/again.csv";
    ASSERT_EQ(WriteCatalogue(again, back.categories), QString());
    EXPECT_TRUE(readFile(again) == catalogue());
    QSet<QString> seen;
    for (const CatalogueCategory& category : back.categories) {
        if (category.name.contains("older", Qt::CaseInsensitive)) {
            EXPECT_TRUE(category.name.startsWith("GUI/FOLDER")) << category.name.toStdString();
        }
        for (qsizetype e = 0; e < category.entries.size(); ++e) {
            const CatalogueEntry& entry = category.entries[e];
            seen.insert((entry.folder + u'/' + entry.file).toLower());
            if (e == 0)
                continue;
            const CatalogueEntry& before = category.entries[e - 1];
            const int order = before.name.compare(entry.name, Qt::CaseInsensitive);
            const bool sameName = before.name == entry.name;
            EXPECT_TRUE(order < 0 || (order == 0 && before.name < entry.name) ||
                        (sameName && (before.folder < entry.folder ||
                                      (before.folder == entry.folder && before.file < entry.file))))
                << before.name.toStdString() << " before " << entry.name.toStdString();
        }
    }
    EXPECT_EQ(seen.size(), 1901 + shipped);
}

// A folder of more textures than a category can count is split in two.
TEST_F(CatalogueBuilderTest, AFolderPastTheCountLimitIsSplit) {
    QList<TestArchiveEntry> entries;
    const QByteArray texture = MakeTestTexture(8, 8);
    for (int i = 0; i < kMaxCatalogueCount + 6; ++i)
        entries.append({QStringLiteral("texture_library/GUI/Big/t%1.texture").arg(i), texture});
    writeArchive("piggs/big.pigg", entries);
    writeFile("config/kelvaris/kelvaris.csv", "0\r\n");
    HeadlessBusy host;
    ASSERT_TRUE(BuildCatalogueFromGame(game(), host).written);
    QMap<QString, qsizetype> sizes;
    for (const CatalogueCategory& category : ReadCatalogue(UserCatalogueFile()).categories)
        sizes[category.name] = category.entries.size();
    EXPECT_EQ(sizes.value("GUI/Big"), kMaxCatalogueCount);
    EXPECT_EQ(sizes.value("GUI/Big (2)"), 6);
}

// A directory of 50,000 entries all naming one 60,000-byte name: one
// texture, read without holding the name once per entry.
TEST_F(CatalogueBuilderTest, ManyEntriesNamingOneLongNameAreOneTexture) {
    const QByteArray name = "texture_library/GUI/" + QByteArray(60000, 'n') + ".texture";
    const QByteArray texture = MakeTestTexture(16, 16);
    const quint32 count = 50000;
    QByteArray bytes(16 + count * 48 + 16 + name.size() + 1 + 12, '\x5A');
    const auto put = [&bytes](qsizetype at, std::initializer_list<quint32> values) {
        for (const quint32 value : values)
            PutU32(bytes, std::exchange(at, at + 4), value);
    };
    put(0, {0x123, 0x00020002, 0x00300010, count});
    for (quint32 i = 0; i < count; ++i) {
        put(16 + i * 48, {0x3456, 0, quint32(texture.size()), 0, quint32(bytes.size()), 0});
        put(16 + i * 48 + 44, {0});
    }
    const qsizetype names = 16 + count * 48;
    put(names, {0x6789, 1, quint32(4 + name.size() + 1), quint32(name.size() + 1)});
    bytes.replace(names + 16, name.size() + 1, QByteArray(name + '\0'));
    put(names + 16 + name.size() + 1, {0x9ABC, 0, 0});
    writeFile("CoH/piggs/one.pigg", bytes + texture);
    writeFile("config/kelvaris/kelvaris.csv", "0\r\n");

    HeadlessBusy host;
    ASSERT_TRUE(BuildCatalogueFromGame(game(), host).written);
    EXPECT_EQ(catalogue().count(QByteArray(60000, 'n')), 2); // its name and its file
    // Far less than the 3 GB the name would take once per entry.
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    EXPECT_LT(usage.ru_maxrss, 1024 * 1024) << "peak KB";
}

TEST(FitCatalogueCounts, SplitsLargeCategoriesAndCapsTheirNumber) {
    QList<CatalogueCategory> categories{
        {"Big", QList<CatalogueEntry>(70000, CatalogueEntry{"t", 1, 1, "f", "t"})}, {"Empty", {}}};
    EXPECT_EQ(FitCatalogueCounts(categories), 0);
    ASSERT_EQ(categories.size(), 4);
    EXPECT_EQ(categories[2].name, "Big (3)");
    EXPECT_EQ(categories[2].entries.size(), 70000 - 2 * 32767);
    EXPECT_EQ(categories[3].name, "Empty");

    QList<CatalogueCategory> many(32767, CatalogueCategory{"c", {}});
    many.append({"over", QList<CatalogueEntry>(3, CatalogueEntry{})});
    EXPECT_EQ(FitCatalogueCounts(many), 3);
    EXPECT_EQ(many.size(), 32767);
}

} // namespace
