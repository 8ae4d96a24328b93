#include "app/PathUtils.h"
#include "common/FormFixture.h"
#include "image/SharedImages.h"
#include "texture/PreviewBox.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QDirIterator>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>

namespace {

// The Screens tab's frames and levels, driven through its controls.
class ScreensFramesLevelsTest : public FormFixture {
protected:
    QString saveImage(const QString& name, const QImage& image) {
        const QString path = root() + u'/' + name;
        image.save(path);
        return path;
    }

    // A grey picture with bytes 15 everywhere, chosen on the tab.
    void choosePicture() {
        QImage picture(1024, 768, QImage::Format_RGB32);
        picture.fill(qRgb(15, 15, 15));
        ui.openAnswers.push_back(saveImage(QStringLiteral("grey.png"), picture));
        control<QPushButton>("scrBrowse")->click();
    }

    // A black frame with a magenta hole at the top-left 100 x 100.
    QString frameFile(int width = 1024, int height = 768) {
        QImage frame(width, height, QImage::Format_RGB32);
        frame.fill(qRgb(0, 0, 0));
        for (int y = 0; y < 100; ++y)
            for (int x = 0; x < 100; ++x)
                frame.setPixel(x, y, qRgb(255, 0, 255));
        return saveImage(QStringLiteral("frame%1.png").arg(height), frame);
    }
};

TEST_F(ScreensFramesLevelsTest, BrowseFrameTakesOnly1024x768) {
    auto* box = control<QLineEdit>("FrameHL");
    box->setText(QStringLiteral("old.bmp"));
    ui.openAnswers.push_back(frameFile(1024, 767));
    control<QPushButton>("BrowseHL")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image is not 1024x768 pixels in size."});
    EXPECT_EQ(box->text(), QStringLiteral("old.bmp"));
    EXPECT_EQ(ui.openRequests.value(0).startFolder, ProgramFolder());
    EXPECT_EQ(ui.openRequests.value(0).filter, "Bitmap images (bmp,png,gif)|*.bmp;*.png;*.gif");

    const QString good = frameFile();
    ui.openAnswers.push_back(good);
    control<QPushButton>("BrowseHL")->click();
    EXPECT_EQ(box->text(), good);

    ui.openAnswers.push_back(writeFile(QStringLiteral("junk.gif"), "GIF89a junk"));
    control<QPushButton>("BrowseHC")->click();
    EXPECT_EQ(ui.messageTexts().last(), "Image could not be loaded.");
    EXPECT_TRUE(control<QLineEdit>("FrameHC")->text().isEmpty());
}

TEST_F(ScreensFramesLevelsTest, FramesAreLaidOverWhenSwitchedOn) {
    choosePicture();
    control<QLineEdit>("FrameHL")->setText(frameFile());
    control<QLineEdit>("FrameHC")->setText(root() + QStringLiteral("/gone.png"));
    auto* frames = control<QCheckBox>("scrFrames");
    auto* framesPreview = control<QCheckBox>("scrFramesPreview");
    frames->click();
    EXPECT_TRUE(framesPreview->isEnabled());
    framesPreview->click();
    SharedImages& images = form->Images();
    // Login preview: black frame around; character preview: no frame file.
    EXPECT_EQ(images.previewHL->Row(0)[0], 0);
    EXPECT_EQ(images.previewHC->Row(0)[0], 15);

    control<QPushButton>("scrSaveHL")->click();
    control<QPushButton>("scrSaveHC")->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join(u'\n').toStdString();
    auto rowStart = [&](const char* screen, int row) {
        QDirIterator it(game, {QString::fromLatin1(screen)}, QDir::Files,
                        QDirIterator::Subdirectories);
        const QByteArray bytes = it.hasNext() ? readFile(it.next()) : QByteArray();
        return bytes.mid(bytes.indexOf("DDS ") + 128 + row * 4096, 4);
    };
    const char* login = "COH_LogInScreen_Background.texture";
    const char* character = "background.texture";
    EXPECT_EQ(rowStart(login, 0), QByteArray("\x0F\x0F\x0F\xFF", 4));       // through the hole
    EXPECT_EQ(rowStart(login, 500), QByteArray("\0\0\0\xFF", 4));           // the frame
    EXPECT_EQ(rowStart(character, 500), QByteArray("\x0F\x0F\x0F\xFF", 4)); // no frame

    frames->click(); // off again: written without frames
    EXPECT_FALSE(framesPreview->isEnabled());
    control<QPushButton>("scrSaveHL")->click();
    EXPECT_EQ(rowStart(login, 500), QByteArray("\x0F\x0F\x0F\xFF", 4));
}

TEST_F(ScreensFramesLevelsTest, LevelsTriedOnThePreviewThenApplied) {
    form->show();
    auto* adjFrame = control<QGroupBox>("adjFrame");
    control<PreviewBox>("scrPreview")->Clicked(); // no picture: no levels
    EXPECT_FALSE(adjFrame->isVisible());
    choosePicture();
    control<PreviewBox>("scrPreview")->Clicked();
    EXPECT_TRUE(adjFrame->isVisible());
    // Everything fits: the preview keeps its rows, the save button is below
    // it, the sliders below both.
    QCoreApplication::processEvents();
    auto* preview = control<PreviewBox>("scrPreview");
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
    EXPECT_EQ(control<QLineEdit>("adjBlackDisplay")->text(), QStringLiteral("19"));
    white->setValue(5); // stops one above black
    EXPECT_EQ(white->value(), 20);
    black->setValue(10);
    SharedImages& images = form->Images();
    EXPECT_EQ(images.previewWorking->Row(0)[0], 128); // 15 between 10 and 20

    control<QPushButton>("adjCancel")->click();
    EXPECT_FALSE(adjFrame->isVisible());
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);
    EXPECT_EQ(control<PreviewBox>("scrPreview")->Picture()->Row(0)[0], 15);

    control<PreviewBox>("scrPreview")->Clicked();
    EXPECT_EQ(white->value(), 255);
    white->setValue(20);
    black->setValue(10);
    control<QPushButton>("adjApply")->click();
    EXPECT_EQ(images.screenImage->Row(0)[0], 128);
    EXPECT_EQ(images.previewHL->Row(0)[0], 128);

    control<PreviewBox>("scrPreview")->Clicked();
    control<QPushButton>("adjRevert")->click(); // read from the file again
    EXPECT_EQ(images.screenImage->Row(0)[0], 15);
    EXPECT_FALSE(adjFrame->isVisible());
}

} // namespace
