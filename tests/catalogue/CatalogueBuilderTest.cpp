#include "texture/CatalogueBuilder.h"

#include "app/BusyHost.h"
#include "catalogue/TestArchive.h"
#include "common/TestEnvironment.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"

#include <QFileInfo>
#include <QtEndian>

namespace {

const QString kPowers = QStringLiteral("texture_library/GUI/Icons/Powers");

class CatalogueBuilderTest : public TestEnvironment {
protected:
    QString game() const { return root() + QStringLiteral("/CoH"); }

    void writeArchive(const QString& relative, const QList<TestArchiveEntry>& entries) const {
        writeFile(QStringLiteral("CoH/") + relative, MakeTestArchive(entries));
    }

    // Two archives in the usual "piggs" folder and one in an older place,
    // names in mixed letter case, one texture in two archives.
    void writeGame() const {
        writeArchive(
            QStringLiteral("piggs/texture_gui.pigg"),
            {{kPowers + QStringLiteral("/Archery_Aim.texture"), MakeTestTexture(32, 32), true},
             {QStringLiteral("Texture_Library/gui/icons/POWERS/blast.texture"),
              MakeTestTexture(64, 64), false},
             {QStringLiteral("texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                             "COH_LogInScreen_Background.texture"),
              MakeTestTexture(1024, 1024, false), true},
             {QStringLiteral("texture_library/GUI/Icons/readme.txt"), "text", false}});
        writeArchive(
            QStringLiteral("piggs/TEXTURE_LIBRARY.PIGG"),
            {{QStringLiteral("texture_library/gui/icons/powers/archery_aim.texture"),
              MakeTestTexture(16, 16), true},
             {QStringLiteral("texture_library/WORLD/Rock.texture"), MakeTestTexture(8, 8), true},
             {QStringLiteral("texture_library/GUI/Aardvark.texture"), MakeTestTexture(8, 4),
              true}});
        writeArchive(QStringLiteral("old/Extra.Pigg"),
                     {{QStringLiteral("texture_library/GUI/Icons/Zebra/Stripe.texture"),
                       MakeTestTexture(128, 256), true}});
    }
};

struct Expected {
    const char* category;
    QList<QStringList> textures; // name, width, height, folder, file
};

TEST_F(CatalogueBuilderTest, ListsEveryInterfaceTextureOnceInNameOrder) {
    writeGame();
    writeFile(QStringLiteral("CoH/piggs/notes.txt"), "not an archive");
    EXPECT_EQ(FindGameArchives(game()).size(), 3);

    HeadlessBusy host;
    long lastProgress = -1;
    host.onProgress = [&](long value) { lastProgress = value; };
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_TRUE(result.written);
    // Five from the archives, and the shipped character-creation background,
    // which keeps its shipped name.
    EXPECT_EQ(result.message, QStringLiteral("6 textures in 5 categories"));
    EXPECT_FALSE(host.IsBusy());
    EXPECT_EQ(lastProgress, 5);

    const CatalogueContents back = ReadCatalogue(UserCatalogueFile());
    ASSERT_EQ(back.error, QString());
    const QList<Expected> expected{
        {"GUI", {{"Aardvark", "8", "4", "texture_library/GUI", "Aardvark"}}},
        {"GUI/CREATION/HybridUI/CharacterCreationUI",
         {{"Character creation", "1024", "1024",
           "texture_library/GUI/CREATION/HybridUI/CharacterCreationUI", "background"}}},
        {"GUI/CREATION/HybridUI/LoginScreen",
         {{"COH_LogInScreen_Background", "1024", "1024",
           "texture_library/GUI/CREATION/HybridUI/LoginScreen", "COH_LogInScreen_Background"}}},
        {"GUI/Icons/Powers",
         {{"Archery_Aim", "32", "32", "texture_library/GUI/Icons/Powers", "Archery_Aim"},
          {"blast", "64", "64", "Texture_Library/gui/icons/POWERS", "blast"}}},
        {"GUI/Icons/Zebra",
         {{"Stripe", "128", "256", "texture_library/GUI/Icons/Zebra", "Stripe"}}},
    };
    ASSERT_EQ(back.categories.size(), expected.size());
    for (qsizetype c = 0; c < expected.size(); ++c) {
        EXPECT_EQ(back.categories[c].name, QString::fromLatin1(expected[c].category));
        ASSERT_EQ(back.categories[c].entries.size(), expected[c].textures.size()) << c;
        for (qsizetype t = 0; t < expected[c].textures.size(); ++t) {
            const CatalogueEntry& e = back.categories[c].entries[t];
            EXPECT_EQ(QStringList({e.name, QString::number(e.width), QString::number(e.height),
                                   e.folder, e.file})
                          .join(u'|')
                          .toStdString(),
                      expected[c].textures[t].join(u'|').toStdString());
        }
    }
}

TEST_F(CatalogueBuilderTest, WithoutArchivesNothingChanges) {
    writeFile(QStringLiteral("config/kelvaris/kelvaris.csv"), "0\r\n");
    writeFile(QStringLiteral("CoH/piggs/readme.txt"), "no archives here");
    HeadlessBusy host;
    for (const QString& folder :
         QStringList{game(), root() + QStringLiteral("/missing"), QString()}) {
        const CatalogueBuildResult result = BuildCatalogueFromGame(folder, host);
        EXPECT_FALSE(result.written);
        EXPECT_EQ(result.message,
                  QStringLiteral("No game archives were found in the game folder."));
    }
    EXPECT_EQ(readFile(UserCatalogueFile()), QByteArray("0\r\n"));
}

TEST_F(CatalogueBuilderTest, CancellingKeepsTheOldCatalogue) {
    writeGame();
    writeFile(QStringLiteral("config/kelvaris/kelvaris.csv"), "0\r\n");
    for (long cancelAt : {1L, 5L}) { // while reading directories, while reading sizes
        HeadlessBusy host;
        host.onProgress = [&](long value) {
            if (value == cancelAt)
                host.RequestCancel();
        };
        const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
        EXPECT_FALSE(result.written);
        EXPECT_TRUE(result.message.contains(QStringLiteral("cancelled"))) << cancelAt;
        EXPECT_FALSE(host.IsBusy());
        EXPECT_EQ(readFile(UserCatalogueFile()), QByteArray("0\r\n"));
    }
}

TEST_F(CatalogueBuilderTest, ABusyHostIsLeftAlone) {
    writeGame();
    HeadlessBusy host;
    host.SetBusy(true, false, 0, QString());
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_FALSE(result.written);
    EXPECT_EQ(result.message, QString());
    EXPECT_TRUE(host.IsBusy());
}

TEST_F(CatalogueBuilderTest, DamagedArchivesAndTexturesAreReportedAndPassedOver) {
    writeGame();
    QByteArray broken =
        MakeTestArchive({{kPowers + QStringLiteral("/Lost.texture"), MakeTestTexture(8, 8), true}});
    PutU32(broken, 12, 0xFFFFFFFF);
    writeFile(QStringLiteral("CoH/piggs/broken.pigg"), broken);
    QByteArray headless = MakeTestTexture(8, 8, false);
    headless.replace("DDS ", "XXXX");
    // An old texture whose long internal name pushes its DDS header far out.
    QByteArray longName = MakeTestTexture(300, 200, false);
    longName.insert(32, QByteArray(1000, 'n'));
    PutU32(longName, 0, qFromLittleEndian<quint32>(longName.constData()) + 1000);
    writeArchive(QStringLiteral("piggs/zz.pigg"),
                 {{kPowers + QStringLiteral("/LongName.texture"), longName, true},
                  {kPowers + QStringLiteral("/NoSize.texture"), headless, false},
                  {kPowers + QStringLiteral("/Quote\".texture"), MakeTestTexture(8, 8), false}});

    HeadlessBusy host;
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_TRUE(result.written);
    const QStringList lines = result.message.split(u'\n');
    ASSERT_EQ(lines.size(), 3) << result.message.toStdString();
    EXPECT_EQ(lines[0], QStringLiteral("7 textures in 5 categories"));
    EXPECT_TRUE(
        lines[1].endsWith(QStringLiteral("broken.pigg\" is damaged: its directory of "
                                         "4294967295 entries runs past the end of the file.")))
        << lines[1].toStdString();
    EXPECT_EQ(lines[2],
              QStringLiteral("2 textures were left out: their size or name could not be read."));
    const CatalogueSelection powers = ReadCatalogueSelection(UserCatalogueFile(), 3);
    EXPECT_EQ(powers.error, QString());
    ASSERT_TRUE(powers.names.contains(QStringLiteral("LongName")));
    EXPECT_EQ(powers.ListLine(int(powers.names.indexOf(QStringLiteral("LongName")))),
              QStringLiteral("LongName (300x200)"));
}

TEST_F(CatalogueBuilderTest, ArchivesWithoutInterfaceTexturesChangeNothing) {
    writeArchive(
        QStringLiteral("piggs/texture_world.pigg"),
        {{QStringLiteral("texture_library/WORLD/Rock.texture"), MakeTestTexture(8, 8), true}});
    HeadlessBusy host;
    const CatalogueBuildResult result = BuildCatalogueFromGame(game(), host);
    EXPECT_FALSE(result.written);
    EXPECT_TRUE(result.message.startsWith(QStringLiteral("No interface textures were found")));
    EXPECT_FALSE(QFileInfo::exists(UserCatalogueFile()));
}

TEST(FitCatalogueCounts, SplitsLargeCategoriesAndCapsTheirNumber) {
    QList<CatalogueCategory> categories{
        {"Big", QList<CatalogueEntry>(70000, CatalogueEntry{"t", 1, 1, "f", "t"})}, {"Empty", {}}};
    EXPECT_EQ(FitCatalogueCounts(categories), 0);
    ASSERT_EQ(categories.size(), 4);
    EXPECT_EQ(categories[0].name, QStringLiteral("Big"));
    EXPECT_EQ(categories[1].name, QStringLiteral("Big (2)"));
    EXPECT_EQ(categories[2].name, QStringLiteral("Big (3)"));
    EXPECT_EQ(categories[2].entries.size(), 70000 - 2 * 32767);
    EXPECT_EQ(categories[3].name, QStringLiteral("Empty"));

    QList<CatalogueCategory> many(32767, CatalogueCategory{"c", {}});
    many.append({"over", QList<CatalogueEntry>(3, CatalogueEntry{})});
    EXPECT_EQ(FitCatalogueCounts(many), 3);
    EXPECT_EQ(many.size(), 32767);
}

} // namespace
