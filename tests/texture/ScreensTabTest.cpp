#include "texture/ScreensTab.h"

#include "app/Form1.h"
#include "app/SettingsTab.h"
#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "image/SharedImages.h"
#include "texture/PreviewBox.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDir>
#include <QEvent>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace {

class ScreensTabTest : public FormFixture {
protected:
    ScreensTabTest() : FormFixture(QStringLiteral("City of Heroes")) {}

    void SetUp() override {
        FormFixture::SetUp();
        tab = form->findChild<ScreensTab*>();
        ASSERT_NE(tab, nullptr);
    }

    // A picture whose top half is red and bottom half blue, chosen through
    // the image-open dialog.
    QString browse(const char* name = "Title Screen.JPG") {
        QImage picture(400, 300, QImage::Format_RGB32);
        picture.fill(qRgb(220, 10, 10));
        for (int y = 150; y < 300; ++y)
            for (int x = 0; x < 400; ++x)
                picture.setPixel(x, y, qRgb(10, 10, 220));
        const QString path = root() + QStringLiteral("/pictures/") + QString::fromLatin1(name);
        QDir().mkpath(root() + QStringLiteral("/pictures"));
        picture.save(path, "JPEG", 95);
        ui.openAnswers.push_back(path);
        control<QPushButton>("scrBrowse")->click();
        return path;
    }

    QString loginTexture() const {
        return game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                                     "COH_LogInScreen_Background.texture");
    }
    QString characterTexture() const {
        return game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/"
                                     "CharacterCreationUI/background.texture");
    }

    ScreensTab* tab = nullptr;
};

TEST_F(ScreensTabTest, TheTabCarriesItsControlsByName) {
    auto* tabs = control<QTabWidget>("SSTab1");
    EXPECT_EQ(tabs->widget(0), tab);
    for (const char* name : {"scrBrowse", "scrSaveHL", "scrSaveHC", "BrowseHL", "BrowseHC"})
        EXPECT_NE(control<QPushButton>(name), nullptr) << name;
    for (const char* name : {"scrImage", "FrameHL", "FrameHC"})
        EXPECT_NE(control<QLineEdit>(name), nullptr) << name;
    EXPECT_EQ(control<QCheckBox>("scrFrames")->text(), QStringLiteral("Overlay image frames"));
    EXPECT_EQ(control<QCheckBox>("scrFramesPreview")->text(),
              QStringLiteral("Display frames in preview"));
    EXPECT_TRUE(control<QGroupBox>("adjFrame")->isHidden());
    EXPECT_NE(control<PreviewBox>("scrPreview"), nullptr);
}

TEST_F(ScreensTabTest, BrowsingLoadsThePictureAndItsPreview) {
    form->findChild<QLineEdit*>(QStringLiteral("setWidth"))->setText(QStringLiteral("1920"));
    form->findChild<QLineEdit*>(QStringLiteral("setHeight"))->setText(QStringLiteral("1080"));
    modRegistry::SetValue(kSettingsKey, QStringLiteral("LastImageDir"), root());
    const QString path = browse();

    ASSERT_EQ(ui.openRequests.size(), 1);
    EXPECT_EQ(ui.openRequests[0].startFolder, root());
    EXPECT_EQ(ui.openRequests[0].proposedName, QString());
    EXPECT_EQ(ui.openRequests[0].filter, QStringLiteral("Image files (bmp,jpg,jpeg,png,gif,tga)|"
                                                        "*.bmp;*.jpg;*.jpeg;*.png;*.gif;*.tga"));
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path);
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastImageDir")),
              root() + QStringLiteral("/pictures"));
    EXPECT_TRUE(ui.messages.isEmpty());

    SharedImages& images = form->Images();
    EXPECT_EQ(images.screenImage->Width(), 1024);
    EXPECT_EQ(images.screenImage->Height(), 768);
    EXPECT_EQ(images.previewWidth, 320);
    EXPECT_EQ(images.previewLeft, (425 - 320) / 2);
    EXPECT_EQ(images.previewOnShow->Width(), 320);
    EXPECT_EQ(images.previewOnShow->Height(), 180);
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QPushButton>("scrSaveHL")->isEnabled());
    EXPECT_TRUE(control<QPushButton>("scrSaveHC")->isEnabled());

    // The preview is painted the right way up at its offset.
    const QImage shown = control<PreviewBox>("scrPreview")->grab().toImage();
    const QRgb top = shown.pixel(images.previewLeft + 160, 20);
    const QRgb bottom = shown.pixel(images.previewLeft + 160, 160);
    EXPECT_GT(qRed(top), 180);
    EXPECT_LT(qBlue(top), 60);
    EXPECT_GT(qBlue(bottom), 180);
    EXPECT_LT(qRed(bottom), 60);
    EXPECT_EQ(shown.pixel(2, 90), shown.pixel(422, 90)); // the ground beside it
}

TEST_F(ScreensTabTest, ACancelledDialogChangesNothing) {
    control<QPushButton>("scrBrowse")->click();
    EXPECT_EQ(ui.openRequests.size(), 1);
    EXPECT_TRUE(control<QLineEdit>("scrImage")->text().isEmpty());
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastImageDir")), QString());
    EXPECT_FALSE(control<QPushButton>("scrSaveHL")->isEnabled());
}

TEST_F(ScreensTabTest, SaveButtonsNeedAGameFolderAndAPicture) {
    auto* saveHL = control<QPushButton>("scrSaveHL");
    auto* saveHC = control<QPushButton>("scrSaveHC");
    form->UpdateButtons();
    EXPECT_FALSE(saveHL->isEnabled());
    browse();
    EXPECT_TRUE(saveHL->isEnabled());
    form->Settings().SetGameFolder(QString());
    EXPECT_FALSE(saveHL->isEnabled());
    EXPECT_FALSE(saveHC->isEnabled());
    form->Settings().SetGameFolder(game);
    EXPECT_TRUE(saveHC->isEnabled());
}

TEST_F(ScreensTabTest, AnUnreadablePictureIsReported) {
    const QString path = root() + QStringLiteral("/Broken Picture.PNG");
    writeFile(QStringLiteral("Broken Picture.PNG"), "not a picture");
    ui.openAnswers.push_back(path);
    control<QPushButton>("scrBrowse")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{QStringLiteral("Image could not be loaded.")});
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
}

TEST_F(ScreensTabTest, SavesBothScreensAndOverwritesOnTheSecondSave) {
    browse();
    control<QPushButton>("scrSaveHL")->click();
    control<QPushButton>("scrSaveHC")->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    const QByteArray login = readFile(loginTexture());
    const QByteArray character = readFile(characterTexture());
    ASSERT_GT(login.size(), 4194432);
    EXPECT_TRUE(login.contains("LoginScreen/COH_LogInScreen_Background.dds"));
    EXPECT_TRUE(character.contains("CharacterCreationUI/background.dds"));
    EXPECT_EQ(login.size() - login.indexOf("DDS "), 128 + 1025 * 4096);
    EXPECT_TRUE(control<QPushButton>("scrSaveHL")->isEnabled());
    EXPECT_FALSE(form->IsBusy());

    // A new picture, saved again, replaces the file.
    browse("Second.png");
    control<QPushButton>("scrSaveHL")->click();
    EXPECT_EQ(readFile(loginTexture()).size(), login.size());
    EXPECT_EQ(QDir(QFileInfo(loginTexture()).path()).entryList(QDir::Files).size(), 1);
}

TEST_F(ScreensTabTest, AnUnwritableGameFolderIsReported) {
    browse();
    writeFile(QStringLiteral("City of Heroes/data"), "a file where the folder goes");
    control<QPushButton>("scrSaveHC")->click();
    EXPECT_EQ(ui.messageTexts(),
              QStringList{QStringLiteral("Error writing image. Please check file permissions.")});
    EXPECT_EQ(ui.messages.value(0).icon, MsgIcon::Exclamation);
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
    EXPECT_TRUE(control<QPushButton>("scrSaveHC")->isEnabled());
}

TEST_F(ScreensTabTest, HoveringASaveButtonShowsItsPreview) {
    browse();
    SharedImages& images = form->Images();
    EXPECT_EQ(images.previewShown, 0);
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHC"), &enter);
    EXPECT_EQ(images.previewShown, 2);
    EXPECT_EQ(images.previewOnShow, images.previewHC);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHL"), &enter);
    EXPECT_EQ(images.previewShown, 1);
    EXPECT_EQ(images.previewOnShow, images.previewHL);
    EXPECT_EQ(control<PreviewBox>("scrPreview")->Picture(), images.previewHL.get());
}

TEST_F(ScreensTabTest, FrameSettingsRoundTripThroughTheTab) {
    modRegistry::SetValue(kSettingsKey, QStringLiteral("Frames"), QStringLiteral("0"));
    modRegistry::SetValue(kSettingsKey, QStringLiteral("FrameHL"), QStringLiteral("/f/login.bmp"));
    auto loaded = std::make_unique<Form1>(ui, QStringList{});
    loaded->Form_Load();
    EXPECT_EQ(loaded->findChild<QLineEdit*>(QStringLiteral("FrameHL"))->text(),
              QStringLiteral("/f/login.bmp"));
    EXPECT_FALSE(loaded->findChild<QCheckBox*>(QStringLiteral("scrFramesPreview"))->isEnabled());
    loaded->findChild<QLineEdit*>(QStringLiteral("FrameHC"))
        ->setText(QStringLiteral("/f/char.png"));
    loaded->Unload();
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("FrameHC")),
              QStringLiteral("/f/char.png"));
}

} // namespace
