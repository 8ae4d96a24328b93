#include "texture/ScreensTab.h"

#include "app/modRegistry.h"
#include "common/FormFixture.h"
#include "image/SharedImages.h"
#include "texture/PreviewBox.h"

#include <QCoreApplication>
#include <QEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QTabWidget>

namespace {

const QString kLogin = QStringLiteral(
    "/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.texture");
const QString kCharacter = QStringLiteral(
    "/data/texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/background.texture");

class ScreensTabTest : public FormFixture {
protected:
    ScreensTabTest() : FormFixture(QStringLiteral("City of Heroes")) {}

    // A picture whose top half is red and bottom half blue, chosen through
    // the image-open dialog.
    QString browse(const char* name = "Title Screen.JPG") {
        QImage picture(400, 300, QImage::Format_RGB32);
        picture.fill(qRgb(10, 10, 220));
        for (int y = 0; y < 150; ++y)
            for (int x = 0; x < 400; ++x)
                picture.setPixel(x, y, qRgb(220, 10, 10));
        const QString path = writeFile(QStringLiteral("pictures/") + name, {});
        picture.save(path, "JPEG", 95);
        ui.openAnswers.push_back(path);
        control<QPushButton>("scrBrowse")->click();
        return path;
    }
};

TEST_F(ScreensTabTest, BrowsingLoadsThePictureAndAPreviewTheRightWayUp) {
    control<QLineEdit>("setWidth")->setText(QStringLiteral("1920"));
    control<QLineEdit>("setHeight")->setText(QStringLiteral("1080"));
    modRegistry::SetValue(kSettingsKey, QStringLiteral("LastImageDir"), root());
    control<QPushButton>("scrBrowse")->click(); // cancelled: nothing changes
    EXPECT_FALSE(control<QPushButton>("scrSaveHL")->isEnabled());
    const QString path = browse();

    EXPECT_EQ(ui.openRequests.value(0).startFolder, root());
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path);
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastImageDir")),
              root() + QStringLiteral("/pictures"));
    SharedImages& images = form->Images();
    EXPECT_EQ(images.screenImage->Width(), 1024);
    EXPECT_EQ(images.screenImage->Height(), 768);
    EXPECT_EQ(images.previewOnShow->Width(), 320);
    EXPECT_EQ(images.previewOnShow->Height(), 180); // the screen's 16:9
    EXPECT_EQ(images.previewLeft, (425 - 320) / 2);
    EXPECT_TRUE(control<QPushButton>("scrSaveHC")->isEnabled());

    const QImage shown = control<PreviewBox>("scrPreview")->grab().toImage();
    const QRgb top = shown.pixel(images.previewLeft + 160, 20);
    const QRgb bottom = shown.pixel(images.previewLeft + 160, 160);
    EXPECT_TRUE(qRed(top) > 180 && qBlue(top) < 60);
    EXPECT_TRUE(qBlue(bottom) > 180 && qRed(bottom) < 60);
    EXPECT_TRUE(ui.messages.isEmpty());

    // Saving needs a game folder as well as a picture.
    form->Settings().SetGameFolder(QString());
    EXPECT_FALSE(control<QPushButton>("scrSaveHL")->isEnabled());
}

TEST_F(ScreensTabTest, SavesBothScreensAndOverwritesOnTheSecondSave) {
    browse();
    control<QPushButton>("scrSaveHL")->click();
    control<QPushButton>("scrSaveHC")->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    const QByteArray login = readFile(game + kLogin);
    EXPECT_TRUE(login.contains("LoginScreen/COH_LogInScreen_Background.dds"));
    EXPECT_EQ(login.size() - login.indexOf("DDS "), 128 + 1025 * 4096);
    EXPECT_TRUE(readFile(game + kCharacter).contains("CharacterCreationUI/background.dds"));
    EXPECT_FALSE(form->IsBusy());

    browse("Second.png");
    control<QPushButton>("scrSaveHL")->click();
    EXPECT_EQ(readFile(game + kLogin).size(), login.size());
    EXPECT_EQ(QDir(QFileInfo(game + kLogin).path()).entryList(QDir::Files).size(), 1);
}

TEST_F(ScreensTabTest, AnUnreadablePictureOrUnwritableGameIsReported) {
    ui.openAnswers.push_back(writeFile(QStringLiteral("Broken Picture.PNG"), "not a picture"));
    control<QPushButton>("scrBrowse")->click();
    browse();
    writeFile(QStringLiteral("City of Heroes/data"), "a file where the folder goes");
    control<QPushButton>("scrSaveHC")->click();
    EXPECT_EQ(ui.messageTexts(),
              QStringList({"Image could not be loaded.", "Error writing image. Please check file "
                                                         "permissions."}));
    EXPECT_FALSE(form->IsBusy());
    EXPECT_TRUE(control<QTabWidget>("SSTab1")->isEnabled());
    EXPECT_TRUE(control<QPushButton>("scrSaveHC")->isEnabled());
}

TEST_F(ScreensTabTest, HoveringASaveButtonShowsItsPreview) {
    browse();
    SharedImages& images = form->Images();
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHC"), &enter);
    EXPECT_EQ(images.previewOnShow, images.previewHC);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHL"), &enter);
    EXPECT_EQ(images.previewOnShow, images.previewHL);
    EXPECT_EQ(control<PreviewBox>("scrPreview")->Picture(), images.previewHL.get());
}

} // namespace
