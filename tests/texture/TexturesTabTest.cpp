#include "texture/TexturesTab.h"

#include "catalogue/TestArchive.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "texture/CatalogueLocation.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDirIterator>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTabWidget>
#include <QTimer>

namespace {

// Three categories: textures of three sizes in two folders, an empty one, and
// a single background.
const QByteArray kCatalogue =
    "3\r\n\"Icons\",3\r\n"
    "\"Aim\",32,32,\"texture_library/GUI/Icons/Powers\",\"Archery_Aim\"\r\n"
    "\"Blast\",64,16,\"texture_library/GUI/Icons/Powers\",\"blast\"\r\n"
    "\"Wide\",16,48,\"texture_library/GUI/Icons/Other\",\"wide\"\r\n"
    "\"Empty\",0\r\n\"Backgrounds\",1\r\n"
    "\"Login\",128,128,\"texture_library/GUI/CREATION\",\"login\"\r\n";
const QString kData = "City of Heroes/data/texture_library/GUI/";

class TexturesTabTest : public FormFixture {
protected:
    TexturesTabTest() : FormFixture("City of Heroes") {}
    void SetUp() override {
        FormFixture::SetUp();
        writeCatalogue(kCatalogue);
    }
    void writeCatalogue(const QByteArray& text) { writeFile("config/kelvaris/kelvaris.csv", text); }
    void enterTab() { tabs()->setCurrentWidget(form->findChild<TexturesTab*>()); }
    void leaveTab() { tabs()->setCurrentIndex(0); }
    QTabWidget* tabs() { return control<QTabWidget>("SSTab1"); }
    QComboBox* list(const char* name) { return control<QComboBox>(name); }
    QStringList items(const char* name) {
        QStringList lines;
        for (int i = 0; i < list(name)->count(); ++i)
            lines << list(name)->itemText(i);
        return lines;
    }
    // A picture split into a left and a right colour, chosen with `button`.
    QString browse(const char* button, const char* name, QRgb left, QRgb right = 0) {
        const QString path = picture(QStringLiteral("pictures/") + name,
                                     FilledImage(80, 40, left, right ? right : left));
        choose(button, path);
        return path;
    }
    void saveAll(bool all = true) {
        control<QCheckBox>("texWriteAll")->setChecked(all);
        click("texSave");
    }
    // Every file written below the temporary folder, but the settings, the
    // test's own pictures and Kelvaris's manifest.
    QStringList filesWritten() const {
        QStringList files;
        QDirIterator it(root(), QDir::Files, QDirIterator::Subdirectories);
        while (it.hasNext())
            files << QDir(root()).relativeFilePath(it.next());
        files.sort();
        return files.filter(
            QRegularExpression("^(?!config/|cache/|pictures/|.*/Kelvaris/manifest\\.txt$)"));
    }
};

TEST_F(TexturesTabTest, EnteringTheTabReadsTheCatalogueAndClosesTheOnlineChooser) {
    control<QGroupBox>("webTexFrame")->show();
    control<QGroupBox>("webFileFrame")->hide();
    enterTab();
    EXPECT_EQ(items("texCategory"), QStringList({"Icons", "Empty", "Backgrounds"}));
    EXPECT_EQ(items("texTexture"), QStringList({"Aim (32x32)", "Blast (64x16)", "Wide (16x48)"}));
    EXPECT_TRUE(control<QGroupBox>("webTexFrame")->isHidden());
    EXPECT_FALSE(control<QGroupBox>("webFileFrame")->isHidden());
    list("texCategory")->setCurrentIndex(2); // rebuilds the texture list
    EXPECT_EQ(items("texTexture"), QStringList({"Login (128x128)"}));

    // Staying on the tab does not read the file again; coming back does.
    writeCatalogue("1\r\n\"Other\",0\r\n");
    form->findChild<TexturesTab*>()->SSTab1_Click(true);
    EXPECT_EQ(list("texCategory")->count(), 3);
    leaveTab();
    enterTab();
    EXPECT_EQ(items("texCategory"), QStringList({"Other"}));
    EXPECT_TRUE(ui.messages.isEmpty());
}

// One texture, then the whole category, each at its own size; the mask's
// blue alone gives the alpha (red and green run the other way).
TEST_F(TexturesTabTest, SavesTheSelectedTextureOrTheWholeCategoryWithTheMaskAsAlpha) {
    enterTab();
    browse("texAlphaBrowse", "mask.bmp", qRgb(255, 255, 0), qRgb(0, 0, 200));
    click("texBrowse"); // cancelled: still no source, nothing to save
    EXPECT_FALSE(control<QPushButton>("texSave")->isEnabled());
    const QString source = browse("texBrowse", "source.png", qRgb(200, 100, 50));
    EXPECT_EQ(control<QLineEdit>("texInput")->text(), source);
    EXPECT_EQ(ui.openRequests.value(2).startFolder, root() + "/pictures"); // the last choice's
    EXPECT_FALSE(control<QLabel>("texPicturePreview")->pixmap().isNull());
    EXPECT_FALSE(control<QLabel>("texMaskPreview")->pixmap().isNull());
    auto* installed = control<QLabel>("texInstalledText");
    list("texTexture")->setCurrentIndex(1);
    EXPECT_EQ(installed->text(), QStringLiteral("not replaced"));
    saveAll(false);
    EXPECT_EQ(filesWritten(), QStringList{kData + "Icons/Powers/blast.texture"});
    EXPECT_EQ(installed->text(), QStringLiteral("64x16, 32-bit")); // what the game has now
    EXPECT_FALSE(control<QLabel>("texInstalledPreview")->pixmap().isNull());
    saveAll();
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
        EXPECT_EQ(written.pixel(e.width - 2, e.height / 2) & 0xFFFFFF, 0xC86432u);
    }
    // Restoring the shown texture shows the game's own again.
    ui.answers.push_back(MsgAnswer::Yes);
    control<QCheckBox>("texWriteAll")->setChecked(false);
    click("texReset");
    EXPECT_EQ(installed->text(), QStringLiteral("not replaced"));
}

TEST_F(TexturesTabTest, FailuresAreToldAndWriteNothing) {
    enterTab();
    list("texCategory")->setCurrentIndex(1); // "Empty": nothing selected, nothing to do
    saveAll();
    EXPECT_TRUE(ui.messages.isEmpty());
    list("texCategory")->setCurrentIndex(0);
    choose("texBrowse", writeFile("pictures/broken.png", "not a picture"));
    saveAll();
    browse("texBrowse", "source.png", qRgb(9, 9, 9));
    choose("texAlphaBrowse", writeFile("pictures/broken.bmp", "BM"));
    saveAll();
    control<QLineEdit>("texAlpha")->clear();
    form->Settings().SetGameFolder(QString());
    saveAll();
    click("texBuild");
    const QString noGame = "No game folder is set. Please choose it on the Settings tab first.";
    // Each texture of the category tells its own picture's failure, then its
    // mask's; without a game folder the run is told once.
    EXPECT_EQ(ui.messageTexts(), QStringList(6, "Image could not be loaded.") << noGame << noGame);
    EXPECT_TRUE(filesWritten().isEmpty());

    // Each texture's failure is told, and the loop goes on.
    ui.messages.clear();
    form->Settings().SetGameFolder(game);
    writeFile("City of Heroes/data", "a file where the folder goes");
    saveAll();
    EXPECT_EQ(ui.messageTexts(),
              QStringList(3, "Error writing image. Please check file permissions."));
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(tabs()->isEnabled());
}

// Restoring one texture asks only when it was replaced; restoring the
// category always asks and leaves the other category alone.
TEST_F(TexturesTabTest, RestoreAsksBeforeDeletingOnlyWhatExists) {
    enterTab();
    for (const char* file : {"Icons/Other/wide", "CREATION/login"})
        writeFile(kData + file + ".texture", "custom texture");
    const auto left = [this] {
        QStringList names;
        for (const QString& path : filesWritten())
            names << QFileInfo(path).baseName();
        return names;
    };
    list("texTexture")->setCurrentIndex(1); // Blast, never replaced: nothing to ask
    click("texReset");
    EXPECT_TRUE(ui.messages.isEmpty());
    list("texTexture")->setCurrentIndex(2); // Wide, replaced
    control<QCheckBox>("texWriteAll")->setChecked(true);
    ui.answers.push_back(MsgAnswer::No);
    click("texReset");
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].buttons, MsgButtons::YesNo);
    EXPECT_EQ(left(), QStringList({"login", "wide"}));
    ui.answers.push_back(MsgAnswer::Yes);
    click("texReset");
    EXPECT_EQ(left(), QStringList{"login"});
    EXPECT_EQ(control<QLabel>("texInstalledText")->text(), QStringLiteral("not replaced"));
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
    EXPECT_EQ(items("texCategory"), QStringList({"GUI/Icons/Powers", "GUI/Icons/Zebra"}));
    list("texCategory")->setCurrentIndex(1);
    EXPECT_EQ(items("texTexture"), QStringList({"Stripe (128x256)"}));
    EXPECT_FALSE(form->IsBusy());
}

} // namespace
