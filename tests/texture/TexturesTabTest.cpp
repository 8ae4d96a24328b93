#include "texture/TexturesTab.h"

#include "catalogue/TestArchive.h"
#include "common/CaseName.h"
#include "common/FormFixture.h"
#include "texture/CatalogueLoader.h"
#include "texture/CatalogueLocation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QtEndian>

namespace {

quint32 u32(const QByteArray& bytes, qsizetype at) {
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

// Three categories: textures of three sizes in two folders, an empty one, and
// a single background.
const QByteArray kCatalogue =
    "3\r\n"
    "\"Icons\",3\r\n"
    "\"Aim\",32,32,\"texture_library/GUI/Icons/Powers\",\"Archery_Aim\"\r\n"
    "\"Blast\",64,16,\"texture_library/GUI/Icons/Powers\",\"blast\"\r\n"
    "\"Wide\",16,48,\"texture_library/GUI/Icons/Other\",\"wide\"\r\n"
    "\"Empty\",0\r\n"
    "\"Backgrounds\",1\r\n"
    "\"Login\",128,128,\"texture_library/GUI/CREATION\",\"login\"\r\n";
const QStringList kCategories{"Icons", "Empty", "Backgrounds"};
const QString kData = QStringLiteral("City of Heroes/data/texture_library/GUI/");

// A written texture's announced size and its uncompressed pixels (BGRA, rows
// from the top).
struct WrittenTexture {
    quint32 width, height;
    QByteArray dds;
    explicit WrittenTexture(const QByteArray& bytes)
        : width(u32(bytes, 8)), height(u32(bytes, 12)),
          dds(bytes.mid(u32(bytes, 0), u32(bytes, 4))) {}
    quint8 at(int x, int y, int channel) const {
        return quint8(dds[128 + (qsizetype(y) * width + x) * 4 + channel]);
    }
};

class TexturesTabTest : public FormFixture {
protected:
    TexturesTabTest() : FormFixture(QStringLiteral("City of Heroes")) {}

    void SetUp() override {
        FormFixture::SetUp();
        tab = form->findChild<TexturesTab*>();
        category = control<QComboBox>("texCategory");
        texture = control<QComboBox>("texTexture");
        writeCatalogue(kCatalogue);
    }

    void writeCatalogue(const QByteArray& text) {
        writeFile(QStringLiteral("config/kelvaris/kelvaris.csv"), text);
    }
    void enterTab() {
        control<QTabWidget>("SSTab1")->setCurrentWidget(form->findChild<TexturesTab*>());
    }
    void click(const char* button) { control<QPushButton>(button)->click(); }

    static QStringList items(const QComboBox* list) {
        QStringList lines;
        for (int i = 0; i < list->count(); ++i)
            lines << list->itemText(i);
        return lines;
    }

    // A picture split into a left and a right colour, chosen with `button`.
    QString browse(const char* button, const char* name, QRgb left, QRgb right) {
        QImage image(80, 40, QImage::Format_RGB32);
        image.fill(right);
        for (int y = 0; y < 40; ++y)
            for (int x = 0; x < 40; ++x)
                image.setPixel(x, y, left);
        const QString path = writeFile(QStringLiteral("pictures/") + name, {});
        image.save(path);
        ui.openAnswers.push_back(path);
        click(button);
        return path;
    }

    // One source colour; the mask's blue is 0 on the left and 200 on the
    // right, its red and green the other way round, so only the blue channel
    // can give the alpha seen.
    void chooseSourceAndMask(bool withMask) {
        enterTab();
        browse("texBrowse", "source.png", qRgb(200, 100, 50), qRgb(200, 100, 50));
        if (withMask)
            browse("texAlphaBrowse", "mask.bmp", qRgb(255, 255, 0), qRgb(0, 0, 200));
    }

    void saveAll() {
        control<QCheckBox>("texWriteAll")->setChecked(true);
        click("texSave");
    }

    // Every file below the temporary folder but the settings, cache,
    // pictures and Kelvaris's manifest of what it wrote, relative to it.
    QStringList filesWritten() const {
        QStringList files;
        QDirIterator it(root(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = QDir(root()).relativeFilePath(it.next());
            if (!path.startsWith(QStringLiteral("config/")) &&
                !path.startsWith(QStringLiteral("cache/")) &&
                !path.startsWith(QStringLiteral("pictures/")) &&
                !path.endsWith(QStringLiteral("/Kelvaris/manifest.txt")))
                files << path;
        }
        files.sort();
        return files;
    }

    TexturesTab* tab = nullptr;
    QComboBox* category = nullptr;
    QComboBox* texture = nullptr;
};

TEST_F(TexturesTabTest, OnlyASourcePictureEnablesSave) {
    browse("texAlphaBrowse", "mask.bmp", qRgb(0, 0, 0), qRgb(255, 255, 255));
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    click("texBrowse"); // cancelled
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    const QString source = browse("texBrowse", "source.png", qRgb(1, 2, 3), qRgb(1, 2, 3));
    EXPECT_EQ(control<QLineEdit>("texInput")->text(), source);
    EXPECT_TRUE(control<QPushButton>("texSave")->isEnabled());
    // The shared dialog remembers the folder of the last choice.
    EXPECT_EQ(ui.openRequests.value(2).startFolder, root() + QStringLiteral("/pictures"));
}

TEST_F(TexturesTabTest, EnteringTheTabReadsTheCatalogueAndClosesTheOnlineChooser) {
    // The Online tab's two faces, its chooser open.
    auto* chooser = control<QGroupBox>("webTexFrame");
    auto* slotList = control<QGroupBox>("webFileFrame");
    chooser->show();
    slotList->hide();

    EXPECT_EQ(category->count(), 0);
    enterTab();
    EXPECT_EQ(items(category), kCategories);
    EXPECT_EQ(items(texture), QStringList({"Aim (32x32)", "Blast (64x16)", "Wide (16x48)"}));
    EXPECT_TRUE(chooser->isHidden());
    EXPECT_FALSE(slotList->isHidden());

    // Staying on the tab does not read the file again; coming back does.
    writeCatalogue("1\r\n\"Other\",0\r\n");
    tab->SSTab1_Click(true);
    EXPECT_EQ(category->count(), 3);
    control<QTabWidget>("SSTab1")->setCurrentIndex(0);
    enterTab();
    EXPECT_EQ(items(category), QStringList({"Other"}));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(TexturesTabTest, ChoosingACategoryRebuildsTheTextureList) {
    enterTab();
    texture->setCurrentIndex(2);
    category->setCurrentIndex(2);
    EXPECT_EQ(items(texture), QStringList({"Login (128x128)"}));
    EXPECT_EQ(form->Catalogue().Selection().files, QStringList({"login"}));
    category->setCurrentIndex(1);
    EXPECT_EQ(texture->currentIndex(), -1);
    category->setCurrentIndex(0);
    EXPECT_EQ(texture->currentIndex(), 0);
    EXPECT_EQ(items(category), kCategories);

    // The Online tab's chooser shares the loaded category, not these lists.
    QComboBox webCategory, webTexture;
    form->Catalogue().LoadCatalogue(2, &webCategory, &webTexture);
    EXPECT_EQ(items(&webTexture), QStringList({"Login (128x128)"}));
    EXPECT_EQ(form->Catalogue().Selection().paths, QStringList({"texture_library/GUI/CREATION"}));
    EXPECT_EQ(texture->count(), 3);
}

class CustomTexture : public TexturesTabTest, public ::testing::WithParamInterface<bool> {};

TEST_P(CustomTexture, IsWrittenAtItsCatalogueSizeWithAlphaFromTheMaskBlue) {
    const bool mask = GetParam();
    chooseSourceAndMask(mask);
    texture->setCurrentIndex(1); // Blast, 64 x 16
    click("texSave");
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    EXPECT_EQ(filesWritten(), QStringList{kData + QStringLiteral("Icons/Powers/blast.texture")});
    const QByteArray bytes = readFile(root() + u'/' + filesWritten().value(0));
    EXPECT_TRUE(bytes.contains("texture_library/GUI/Icons/Powers/blast.dds"));
    const WrittenTexture written(bytes);
    EXPECT_EQ(written.dds.size(), 128 + 64 * 16 * 4);
    for (int x : {2, 61})
        EXPECT_EQ(QList<int>({written.at(x, 8, 0), written.at(x, 8, 1), written.at(x, 8, 2)}),
                  QList<int>({50, 100, 200}));
    EXPECT_NEAR(written.at(2, 8, 3), mask ? 0 : 255, 2);
    EXPECT_NEAR(written.at(61, 8, 3), mask ? 200 : 255, 2);
}

INSTANTIATE_TEST_SUITE_P(MaskOrNot, CustomTexture, ::testing::Bool());

TEST_F(TexturesTabTest, ApplyToAllWritesEveryTextureAtItsOwnSizeWithTheMaskResized) {
    chooseSourceAndMask(true);
    saveAll();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    const struct {
        const char* file;
        quint32 width, height;
    } expected[] = {{"Icons/Powers/Archery_Aim", 32, 32},
                    {"Icons/Powers/blast", 64, 16},
                    {"Icons/Other/wide", 16, 48}};
    for (const auto& e : expected) {
        const WrittenTexture written(
            readFile(root() + u'/' + kData + QString::fromLatin1(e.file) + ".texture"));
        SCOPED_TRACE(e.file);
        EXPECT_EQ(QList<quint32>({written.width, written.height}),
                  QList<quint32>({e.width, e.height}));
        EXPECT_EQ(written.dds.size(), qsizetype(128 + e.width * e.height * 4));
        EXPECT_NEAR(written.at(1, e.height / 2, 3), 0, 2);
        EXPECT_NEAR(written.at(e.width - 2, e.height / 2, 3), 200, 2);
    }
}

TEST_F(TexturesTabTest, SaveWithNoTextureSelectedDoesNothing) {
    chooseSourceAndMask(false);
    category->setCurrentIndex(1); // "Empty"
    click("texSave");
    saveAll();
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_TRUE(filesWritten().isEmpty());
}

TEST_F(TexturesTabTest, WriteFailuresAreToldPerTextureAndTheLoopGoesOn) {
    chooseSourceAndMask(false);
    writeFile(QStringLiteral("City of Heroes/data"), "a file where the folder goes");
    saveAll();
    EXPECT_EQ(ui.messageTexts(),
              QStringList(3, "Error writing image. Please check file permissions."));
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
}

TEST_F(TexturesTabTest, AnUnreadablePictureOrMaskIsToldPerTextureAndNothingIsWritten) {
    enterTab();
    ui.openAnswers.push_back(writeFile(QStringLiteral("pictures/broken.png"), "not a picture"));
    click("texBrowse");
    saveAll();
    browse("texBrowse", "source.png", qRgb(9, 9, 9), qRgb(9, 9, 9));
    ui.openAnswers.push_back(writeFile(QStringLiteral("pictures/broken.bmp"), "BM"));
    click("texAlphaBrowse");
    click("texSave");
    // Each texture of the category reports its own failure: the picture's
    // first, then the mask's.
    EXPECT_EQ(ui.messageTexts(),
              QStringList(2 * form->Catalogue().Selection().Count(), "Image could not be loaded."));
    EXPECT_TRUE(filesWritten().isEmpty());
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(TexturesTabTest, NoGameFolderIsToldAndNothingIsWritten) {
    chooseSourceAndMask(false);
    form->Settings().SetGameFolder(QString());
    saveAll();
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(),
              QStringList(2, "No game folder is set. Please choose it on the Settings tab first."));
    EXPECT_TRUE(filesWritten().isEmpty());
}

struct RestoreCase {
    const char* name;
    bool all;
    bool replaced; // the selected texture has a custom file
    MsgAnswer answer;
    QStringList left; // texture files still there afterwards
};

class Restore : public TexturesTabTest, public ::testing::WithParamInterface<RestoreCase> {};

TEST_P(Restore, AsksBeforeDeletingOnlyWhatExists) {
    const RestoreCase& c = GetParam();
    enterTab();
    for (const char* file : {"Icons/Powers/blast", "Icons/Other/wide", "CREATION/login"})
        if (c.replaced || file != std::string("Icons/Powers/blast"))
            writeFile(kData + file + ".texture", "custom texture");
    texture->setCurrentIndex(1);
    control<QCheckBox>("texWriteAll")->setChecked(c.all);
    ui.answers.push_back(c.answer);
    click("texReset");
    if (c.replaced) {
        ASSERT_EQ(ui.messages.size(), 1);
        EXPECT_EQ(ui.messages[0].text,
                  QStringLiteral("This will REMOVE the custom %1 you have\r\nplaced in the %2!"
                                 "\r\n\r\nAre you sure?")
                      .arg(QLatin1String(c.all ? "images" : "image"),
                           QLatin1String(c.all ? "WHOLE Category" : "selected Texture")));
        EXPECT_EQ(ui.messages[0].buttons, MsgButtons::YesNo);
    } else {
        EXPECT_TRUE(ui.messages.isEmpty());
    }
    QStringList left;
    for (const QString& path : filesWritten())
        left << QFileInfo(path).baseName();
    left.sort();
    EXPECT_EQ(left, c.left);
}

// Archery_Aim has no file and is passed over; the other category is not touched.
INSTANTIATE_TEST_SUITE_P(
    Cases, Restore,
    ::testing::Values(RestoreCase{"one yes", false, true, MsgAnswer::Yes, {"login", "wide"}},
                      RestoreCase{"one no", false, true, MsgAnswer::No, {"blast", "login", "wide"}},
                      RestoreCase{
                          "one never replaced", false, false, MsgAnswer::Yes, {"login", "wide"}},
                      RestoreCase{"all yes", true, true, MsgAnswer::Yes, {"login"}},
                      RestoreCase{"all no", true, true, MsgAnswer::No, {"blast", "login", "wide"}}),
    CaseName<RestoreCase>);

// Told once, with the way out, however the tab is used; nothing written outside.
TEST_F(TexturesTabTest, AHostileCatalogueWritesNothingOutsideTheGameFolder) {
    writeCatalogue("2\r\n\"Mixed\",4\r\n"
                   "\"Escape\",32,32,\"../../..\",\"outside\"\r\n"
                   "\"Absolute\",32,32,\"" +
                   root().toUtf8() +
                   "/elsewhere\",\"outside\"\r\n"
                   "\"Climb\",32,32,\"texture_library\",\"../../../outside\"\r\n"
                   "\"Fine\",32,32,\"texture_library/GUI\",\"fine\"\r\n"
                   "\"Second\",1\r\n"
                   "\"Hidden\",32,32,\"texture_library/../../..\",\"outside\"\r\n");
    chooseSourceAndMask(true);
    EXPECT_TRUE(ui.messageTexts().value(0).contains(QStringLiteral("4 texture(s)")));
    EXPECT_TRUE(ui.messageTexts().value(0).contains(QStringLiteral("Build catalogue from game")));
    EXPECT_EQ(items(texture), QStringList({"Fine (32x32)"}));
    saveAll();
    category->setCurrentIndex(1);
    click("texSave");
    control<QTabWidget>("SSTab1")->setCurrentIndex(0);
    enterTab();
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(filesWritten(), QStringList{kData + QStringLiteral("fine.texture")});
}

TEST_F(TexturesTabTest, TheBuildButtonListsTheGamesOwnTextures) {
    QFile::remove(UserCatalogueFile());
    writeFile(QStringLiteral("City of Heroes/piggs/texture_gui.pigg"),
              MakeTestArchive(
                  {{"texture_library/GUI/Icons/Powers/Aim.texture", MakeTestTexture(32, 32), true},
                   {"texture_library/GUI/Icons/Zebra/Stripe.texture", MakeTestTexture(128, 256)}}));
    enterTab(); // no catalogue yet: told once
    ui.messages.clear();
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(), QStringList{"2 textures in 2 categories"});
    EXPECT_EQ(items(category), QStringList({"GUI/Icons/Powers", "GUI/Icons/Zebra"}));
    category->setCurrentIndex(1);
    EXPECT_EQ(items(texture), QStringList({"Stripe (128x256)"}));
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(TexturesTabTest, TheQuitButtonCancelsTheBuildAndTheCatalogueStays) {
    writeFile(QStringLiteral("City of Heroes/piggs/texture_gui.pigg"),
              MakeTestArchive({{"texture_library/GUI/A.texture", MakeTestTexture(32, 32), true}}));
    enterTab();
    // Clicked at the first progress report, while the build is under way.
    QTimer::singleShot(0, control<QPushButton>("Quit"), &QPushButton::click);
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(),
              QStringList{"Building the texture catalogue was cancelled; the catalogue was not "
                          "changed."});
    EXPECT_EQ(readFile(UserCatalogueFile()), kCatalogue);
    EXPECT_FALSE(form->IsUnloaded());
}

TEST_F(TexturesTabTest, PreviewsShowThePicturesAndWhatTheGameHasNow) {
    chooseSourceAndMask(true);
    auto* installed = control<QLabel>("texInstalledText");
    EXPECT_FALSE(control<QLabel>("texPicturePreview")->pixmap().isNull());
    EXPECT_FALSE(control<QLabel>("texMaskPreview")->pixmap().isNull());
    texture->setCurrentIndex(1); // Blast (64x16)
    EXPECT_EQ(installed->text(), QStringLiteral("not replaced"));
    EXPECT_EQ(control<QLabel>("texInstalledPreview")->text(), QStringLiteral("the game's own"));

    click("texSave");
    EXPECT_EQ(installed->text(), QStringLiteral("64x16, 32-bit"));
    EXPECT_FALSE(control<QLabel>("texInstalledPreview")->pixmap().isNull());
    ui.answers.push_back(MsgAnswer::Yes);
    click("texReset");
    EXPECT_EQ(installed->text(), QStringLiteral("not replaced"));
}

} // namespace
