#include "texture/ScreensTab.h"

#include "app/PathUtils.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "image/SharedImages.h"
#include "texture/PreviewBox.h"
#include "texture/ScreenTargets.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QEvent>
#include <QGroupBox>
#include <QLineEdit>
#include <QScrollBar>

namespace {

class ScreensTabTest : public FormFixture {
protected:
    // A picture whose top half is red and bottom half blue, chosen on the tab.
    QString browse(const char* name = "Title Screen.JPG") {
        const QString path = picture(QStringLiteral("pictures/") + name,
                                     FilledImage(300, 400, qRgb(220, 10, 10), qRgb(10, 10, 220))
                                         .transformed(QTransform().rotate(90)));
        choose("scrBrowse", path);
        return path;
    }
    // A grey picture with bytes 15 everywhere, chosen on the tab.
    void browseGrey() {
        choose("scrBrowse", picture("grey.png", FilledImage(1024, 768, 0x0F0F0F)));
    }
    // A black frame with a magenta hole at the top-left 100 x 100.
    QString frameFile(int width = 1024, int height = 768) {
        QImage frame = FilledImage(width, height, 0);
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                frame.setPixel(x, y, qRgb(255, 0, 255));
        return picture(QStringLiteral("frame%1.png").arg(height), frame);
    }
    // The first pixel of a row of the written screen, as blue, green, red, alpha.
    QByteArray rowStart(const ScreenTarget& screen, int row) {
        const QByteArray bytes = readFile(ScreenTextureFile(game, screen));
        return bytes.mid(bytes.indexOf("DDS ") + 128 + row * 4096, 4);
    }
};

TEST_F(ScreensTabTest, BrowsingLoadsThePictureAndAPreviewTheRightWayUp) {
    control<QLineEdit>("setWidth")->setText("1920");
    control<QLineEdit>("setHeight")->setText("1080");
    storeSetting("LastImageDir", root());
    click("scrBrowse"); // cancelled: nothing changes
    EXPECT_FALSE(control<QPushButton>("scrSaveHL")->isEnabled());
    const QString path = browse();
    EXPECT_EQ(ui.openRequests.value(0).startFolder, root());
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path);
    EXPECT_EQ(setting("LastImageDir"), root() + "/pictures");
    SharedImages& images = form->Images();
    EXPECT_EQ(images.screenImage->Width(), 1024);
    EXPECT_EQ(images.screenImage->Height(), 768);
    EXPECT_EQ(images.previewOnShow->Width(), 320);
    EXPECT_EQ(images.previewOnShow->Height(), 180); // the screen's 16:9
    EXPECT_TRUE(control<QPushButton>("scrSaveHC")->isEnabled());

    const QImage shown = control<PreviewBox>("scrPreview")->grab().toImage();
    const QRgb top = shown.pixel(images.previewLeft + 160, 20);
    const QRgb bottom = shown.pixel(images.previewLeft + 160, 160);
    EXPECT_TRUE(qRed(top) > 180 && qBlue(top) < 60);
    EXPECT_TRUE(qBlue(bottom) > 180 && qRed(bottom) < 60);
    // Hovering a save button shows its screen's preview.
    QEvent enter(QEvent::Enter);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHC"), &enter);
    EXPECT_EQ(images.previewOnShow, images.previewHC);
    QCoreApplication::sendEvent(control<QPushButton>("scrSaveHL"), &enter);
    EXPECT_EQ(control<PreviewBox>("scrPreview")->Picture(), images.previewHL.get());
    EXPECT_TRUE(ui.messages.isEmpty());

    // Saving needs a game folder as well as a picture.
    form->Settings().SetGameFolder(QString());
    EXPECT_FALSE(control<QPushButton>("scrSaveHL")->isEnabled());
}

TEST_F(ScreensTabTest, BrowseFrameTakesOnly1024x768) {
    auto* box = control<QLineEdit>("FrameHL");
    box->setText("old.bmp");
    choose("BrowseHL", frameFile(1024, 767));
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image is not 1024x768 pixels in size."});
    EXPECT_EQ(box->text(), "old.bmp");
    EXPECT_EQ(ui.openRequests.value(0).startFolder, ProgramFolder());
    const QString good = frameFile();
    choose("BrowseHL", good);
    EXPECT_EQ(box->text(), good);
    choose("BrowseHC", writeFile("junk.gif", "GIF89a junk"));
    EXPECT_EQ(ui.messageTexts().last(), "Image could not be loaded.");
    EXPECT_TRUE(control<QLineEdit>("FrameHC")->text().isEmpty());
}

// Both screens are written, the login screen through its frame's hole; the
// second save of a screen replaces the first.
TEST_F(ScreensTabTest, FramesAreLaidOverWhenSwitchedOn) {
    browseGrey();
    control<QLineEdit>("FrameHL")->setText(frameFile());
    control<QLineEdit>("FrameHC")->setText(root() + "/gone.png");
    auto* frames = control<QCheckBox>("scrFrames");
    auto* framesPreview = control<QCheckBox>("scrFramesPreview");
    frames->click();
    EXPECT_TRUE(framesPreview->isEnabled());
    framesPreview->click();
    // Login preview: black frame around; character preview: no frame file.
    EXPECT_EQ(form->Images().previewHL->Row(0)[0], 0);
    EXPECT_EQ(form->Images().previewHC->Row(0)[0], 15);

    click("scrSaveHL");
    click("scrSaveHC");
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    EXPECT_EQ(rowStart(kLoginScreen, 0), QByteArray("\x0F\x0F\x0F\xFF", 4)); // through the hole
    EXPECT_EQ(rowStart(kLoginScreen, 500), QByteArray("\0\0\0\xFF", 4));     // the frame
    EXPECT_EQ(rowStart(kCharacterScreen, 500), QByteArray("\x0F\x0F\x0F\xFF", 4)); // no frame
    EXPECT_TRUE(readFile(ScreenTextureFile(game, kCharacterScreen))
                    .contains("CharacterCreationUI/background.dds"));

    frames->click(); // off again: written without frames
    EXPECT_FALSE(framesPreview->isEnabled());
    click("scrSaveHL");
    EXPECT_EQ(rowStart(kLoginScreen, 500), QByteArray("\x0F\x0F\x0F\xFF", 4));
    EXPECT_EQ(
        QDir(QFileInfo(ScreenTextureFile(game, kLoginScreen)).path()).entryList(QDir::Files).size(),
        1);
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(ScreensTabTest, LevelsTriedOnThePreviewThenApplied) {
    form->show();
    auto* adjFrame = control<QGroupBox>("adjFrame");
    auto* preview = control<PreviewBox>("scrPreview");
    preview->Clicked(); // no picture: no levels
    EXPECT_FALSE(adjFrame->isVisible());
    browseGrey();
    preview->Clicked();
    EXPECT_TRUE(adjFrame->isVisible());
    // Everything fits: the preview keeps its rows, the save button is below
    // it, the sliders below both, all inside the window.
    QCoreApplication::processEvents();
    const auto inWindow = [this](const QWidget* widget) {
        return QRect(widget->mapTo(form.get(), QPoint(0, 0)), widget->size());
    };
    EXPECT_EQ(preview->height(), 180);
    EXPECT_GE(inWindow(control<QPushButton>("scrSaveHL")).top(), inWindow(preview).bottom());
    EXPECT_GE(inWindow(adjFrame).top(), inWindow(control<QPushButton>("scrSaveHL")).bottom());
    EXPECT_LE(inWindow(adjFrame).bottom(), form->height());
    auto* black = control<QScrollBar>("adjBlack");
    auto* white = control<QScrollBar>("adjWhite");
    white->setValue(20);
    black->setValue(200); // stops one below white
    EXPECT_EQ(black->value(), 19);
    EXPECT_EQ(control<QLineEdit>("adjBlackDisplay")->text(), "19");
    white->setValue(5); // stops one above black
    EXPECT_EQ(white->value(), 20);
    black->setValue(10);
    SharedImages& images = form->Images();
    EXPECT_EQ(images.previewWorking->Row(0)[0], 128); // 15 between 10 and 20

    click("adjCancel");
    EXPECT_FALSE(adjFrame->isVisible());
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);
    EXPECT_EQ(preview->Picture()->Row(0)[0], 15);

    preview->Clicked();
    EXPECT_EQ(white->value(), 255);
    white->setValue(20);
    black->setValue(10);
    click("adjApply");
    EXPECT_EQ(images.screenImage->Row(0)[0], 128);
    EXPECT_EQ(images.previewHL->Row(0)[0], 128);

    preview->Clicked();
    click("adjRevert"); // read from the file again
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);
    EXPECT_FALSE(adjFrame->isVisible());
}

} // namespace
