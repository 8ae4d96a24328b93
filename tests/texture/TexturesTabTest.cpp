#include "texture/TexturesTab.h"

#include "catalogue/TestArchive.h"
#include "common/CaseName.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "texture/CatalogueLoader.h"
#include "texture/CatalogueLocation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

namespace {

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
    void enterTab() { control<QTabWidget>("SSTab1")->setCurrentWidget(tab); }
    void leaveTab() { control<QTabWidget>("SSTab1")->setCurrentIndex(0); }

    static QStringList items(const QComboBox* list) {
        QStringList lines;
        for (int i = 0; i < list->count(); ++i)
            lines << list->itemText(i);
        return lines;
    }

    // A picture split into a left and a right colour, chosen with `button`.
    QString browse(const char* button, const char* name, QRgb left, QRgb right) {
        const QString path =
            picture(QStringLiteral("pictures/") + name, FilledImage(80, 40, left, right));
        choose(button, path);
        return path;
    }

    void saveAll() {
        control<QCheckBox>("texWriteAll")->setChecked(true);
        click("texSave");
    }

    // Every file below the temporary folder but the settings, cache and
    // pictures, relative to it.
    QStringList filesWritten() const {
        QStringList files;
        QDirIterator it(root(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext()) {
            const QString path = QDir(root()).relativeFilePath(it.next());
            if (!path.startsWith(QStringLiteral("config/")) &&
                !path.startsWith(QStringLiteral("cache/")) &&
                !path.startsWith(QStringLiteral("pictures/")))
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
    click("texBrowse"); // cancelled
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    const QString source = browse("texBrowse", "source.png", qRgb(1, 2, 3), qRgb(1, 2, 3));
    EXPECT_EQ(control<QLineEdit>("texInput")->text(), source);
    EXPECT_TRUE(control<QPushButton>("texSave")->isEnabled());
    // The shared dialog remembers the folder of the last choice.
    EXPECT_EQ(ui.openRequests.value(2).startFolder, root() + "/pictures");
}

TEST_F(TexturesTabTest, EnteringTheTabReadsTheCatalogueAndClosesTheOnlineChooser) {
    auto* chooser = control<QGroupBox>("webTexFrame");
    chooser->show();
    control<QGroupBox>("webFileFrame")->hide();
    EXPECT_EQ(category->count(), 0);
    enterTab();
    EXPECT_EQ(items(category), kCategories);
    EXPECT_EQ(items(texture), QStringList({"Aim (32x32)", "Blast (64x16)", "Wide (16x48)"}));
    EXPECT_TRUE(chooser->isHidden());
    EXPECT_FALSE(control<QGroupBox>("webFileFrame")->isHidden());
    category->setCurrentIndex(2); // rebuilds the texture list
    EXPECT_EQ(items(texture), QStringList({"Login (128x128)"}));
    category->setCurrentIndex(1);
    EXPECT_EQ(texture->currentIndex(), -1);

    // Staying on the tab does not read the file again; coming back does.
    writeCatalogue("1\r\n\"Other\",0\r\n");
    tab->SSTab1_Click(true);
    EXPECT_EQ(category->count(), 3);
    leaveTab();
    enterTab();
    EXPECT_EQ(items(category), QStringList({"Other"}));
    EXPECT_TRUE(ui.messages.isEmpty());
}

// One texture, then the whole category, each at its own size; the mask's
// blue alone gives the alpha (red and green run the other way).
TEST_F(TexturesTabTest, SavesTheSelectedTextureOrTheWholeCategoryWithTheMaskAsAlpha) {
    enterTab();
    browse("texBrowse", "source.png", qRgb(200, 100, 50), qRgb(200, 100, 50));
    browse("texAlphaBrowse", "mask.bmp", qRgb(255, 255, 0), qRgb(0, 0, 200));
    texture->setCurrentIndex(1);
    click("texSave");
    EXPECT_EQ(filesWritten(), QStringList{kData + "Icons/Powers/blast.texture"});
    control<QCheckBox>("texWriteAll")->setChecked(true);
    click("texSave");
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    EXPECT_EQ(filesWritten().size(), 3);
    const struct {
        const char* file;
        int width, height;
    } expected[] = {{"Icons/Powers/Archery_Aim", 32, 32},
                    {"Icons/Powers/blast", 64, 16},
                    {"Icons/Other/wide", 16, 48}};
    for (const auto& e : expected) {
        SCOPED_TRACE(e.file);
        const TextureFile written(readFile(root() + u'/' + kData + e.file + ".texture"));
        EXPECT_EQ(written.name, QByteArray("texture_library/GUI/") + e.file + ".dds");
        EXPECT_EQ(QSize(int(written.width), int(written.height)), QSize(e.width, e.height));
        EXPECT_EQ(written.dds.size(), 128 + e.width * e.height * 4);
        EXPECT_NEAR(qAlpha(written.pixel(1, e.height / 2)), 0, 2);
        EXPECT_NEAR(qAlpha(written.pixel(e.width - 2, e.height / 2)), 200, 2);
        EXPECT_EQ(written.pixel(e.width - 2, e.height / 2) & 0xFFFFFF,
                  qRgb(200, 100, 50) & 0xFFFFFF);
    }
}

TEST_F(TexturesTabTest, FailuresAreToldAndWriteNothing) {
    enterTab();
    category->setCurrentIndex(1); // "Empty": nothing selected, nothing to do
    saveAll();
    EXPECT_TRUE(ui.messages.isEmpty());
    category->setCurrentIndex(0);
    choose("texBrowse", writeFile("pictures/broken.png", "not a picture"));
    saveAll();
    browse("texBrowse", "source.png", qRgb(9, 9, 9), qRgb(9, 9, 9));
    choose("texAlphaBrowse", writeFile("pictures/broken.bmp", "BM"));
    click("texSave");
    control<QLineEdit>("texAlpha")->clear();
    form->Settings().SetGameFolder(QString());
    click("texSave");
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(),
              QStringList({"Image could not be loaded.", "Image could not be loaded.",
                           "No game folder is set. Please choose it on the Settings tab first.",
                           "No game folder is set. Please choose it on the Settings tab first."}));
    EXPECT_TRUE(filesWritten().isEmpty());

    // Each texture's failure is told, and the loop goes on.
    ui.messages.clear();
    form->Settings().SetGameFolder(game);
    writeFile("City of Heroes/data", "a file where the folder goes");
    click("texSave");
    EXPECT_EQ(ui.messageTexts(),
              QStringList(3, "Error writing image. Please check file permissions."));
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
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
    // Asked first, unless there is nothing to delete.
    ASSERT_EQ(ui.messages.size(), c.replaced ? 1 : 0);
    EXPECT_TRUE(!c.replaced || ui.messages[0].buttons == MsgButtons::YesNo);
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
    enterTab();
    browse("texBrowse", "source.png", qRgb(9, 9, 9), qRgb(9, 9, 9));
    EXPECT_TRUE(ui.messageTexts().value(0).contains("4 texture(s)"));
    EXPECT_TRUE(ui.messageTexts().value(0).contains("Build catalogue from game"));
    EXPECT_EQ(items(texture), QStringList({"Fine (32x32)"}));
    saveAll();
    category->setCurrentIndex(1);
    click("texSave");
    leaveTab();
    enterTab();
    EXPECT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(filesWritten(), QStringList{kData + "fine.texture"});
}

// A build cancelled by the Quit button keeps the catalogue; a whole one
// replaces it and is shown.
TEST_F(TexturesTabTest, TheBuildButtonListsTheGamesOwnTexturesUnlessCancelled) {
    writeFile("City of Heroes/piggs/texture_gui.pigg",
              MakeTestArchive(
                  {{"texture_library/GUI/Icons/Powers/Aim.texture", MakeTestTexture(32, 32), true},
                   {"texture_library/GUI/Icons/Zebra/Stripe.texture", MakeTestTexture(128, 256)}}));
    enterTab();
    // Clicked at the first progress report, while the build is under way.
    QTimer::singleShot(0, control<QPushButton>("Quit"), &QPushButton::click);
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(),
              QStringList{"Building the texture catalogue was cancelled; the catalogue was not "
                          "changed."});
    EXPECT_EQ(readFile(UserCatalogueFile()), kCatalogue);
    EXPECT_FALSE(form->IsUnloaded());

    ui.messages.clear();
    click("texBuild");
    EXPECT_EQ(ui.messageTexts(), QStringList{"2 textures in 2 categories"});
    EXPECT_EQ(items(category), QStringList({"GUI/Icons/Powers", "GUI/Icons/Zebra"}));
    category->setCurrentIndex(1);
    EXPECT_EQ(items(texture), QStringList({"Stripe (128x256)"}));
    EXPECT_FALSE(form->IsBusy());
}

} // namespace
