#include "randomizer/RandomizerTab.h"

#include "app/Form1.h"
#include "app/SettingsTab.h"
#include "common/FakeUi.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "randomizer/LibraryFolder.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

namespace {

// A library entry: a bare 1024 x 1024 DDS continued one row past its header.
constexpr qint64 kLibraryEntryBytes = 128 + 1025 * 1024 * 4;

class RandomizerTabTest : public FormFixture {
protected:
    QString picture(const QString& relative, QRgb colour = qRgb(200, 40, 40)) {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = root() + u'/' + relative;
        QDir().mkpath(QFileInfo(path).absolutePath());
        image.save(path, QFileInfo(path).suffix().toLower() == u"jpeg" ? "JPEG" : nullptr);
        return path;
    }
    QString library(const char* half) const {
        return game + QStringLiteral("/Kelvaris/") + QString::fromLatin1(half);
    }
    QStringList entries(const char* half) const {
        QStringList names = QDir(library(half)).entryList(QDir::Files);
        names.sort();
        return names;
    }
    // The first pixel of a library entry, as blue, green, red, alpha.
    QByteArray firstPixel(const QString& path) const { return readFile(path).mid(128, 4); }
};

TEST_F(RandomizerTabTest, ButtonsNeedAGameFolderAndAPicture) {
    form->UpdateButtons();
    EXPECT_FALSE(control<QPushButton>("rndSaveHL")->isEnabled());
    ui.openAnswers.push_back(picture(QStringLiteral("pics/Sunset.png")));
    control<QPushButton>("rndBrowse")->click();
    EXPECT_TRUE(control<QPushButton>("rndSaveHL")->isEnabled());
    EXPECT_TRUE(control<QPushButton>("rndSaveHC")->isEnabled());
    form->Settings().SetGameFolder(QString());
    EXPECT_FALSE(control<QPushButton>("rndSaveHC")->isEnabled());
}

TEST_F(RandomizerTabTest, OnePictureBecomesALibraryEntryOfEachHalf) {
    const QString path = picture(QStringLiteral("pics/Sunset Glow.png"));
    ui.openAnswers.push_back(path);
    control<QPushButton>("rndBrowse")->click();
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), path);
    // The Screens tab shows the same picture.
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path);

    control<QPushButton>("rndSaveHL")->click();
    control<QPushButton>("rndSaveHL")->click(); // the same picture again: one entry
    control<QPushButton>("rndSaveHC")->click();
    EXPECT_EQ(entries("RandomHL"), QStringList{"Sunset Glow.png.dds"});
    EXPECT_EQ(entries("RandomHC"), QStringList{"Sunset Glow.png.dds"});
    EXPECT_EQ(QFileInfo(library("RandomHL") + QStringLiteral("/Sunset Glow.png.dds")).size(),
              kLibraryEntryBytes);
    EXPECT_EQ(firstPixel(library("RandomHL") + QStringLiteral("/Sunset Glow.png.dds")),
              QByteArray("\x28\x28\xc8\xff", 4));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(RandomizerTabTest, FolderBoxShowsTheFolderAndAddsEveryPictureInIt) {
    picture(QStringLiteral("pics/a.png"));
    picture(QStringLiteral("pics/B.JPEG"));
    picture(QStringLiteral("pics/c.bmp"));
    writeFile(QStringLiteral("pics/notes.txt"), "not a picture");
    writeFile(QStringLiteral("pics/scan.tiff"), "not taken");
    const QString chosen = picture(QStringLiteral("pics/a.png"));
    ui.openAnswers.push_back(chosen);
    control<QPushButton>("rndBrowse")->click();

    control<QCheckBox>("rndFolder")->setChecked(true);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), root() + QStringLiteral("/pics"));
    control<QPushButton>("rndSaveHC")->click();

    EXPECT_EQ(entries("RandomHC"), QStringList({"B.JPEG.dds", "a.png.dds", "c.bmp.dds"}));
    EXPECT_EQ(control<QPushButton>("rndSaveHC")->text(),
              QStringLiteral("Add to character selection screen"));
    // The last picture of the batch stays loaded and named on the Screens tab.
    const QString last = control<QLineEdit>("scrImage")->text();
    EXPECT_TRUE(last.startsWith(root() + QStringLiteral("/pics/")));
    control<QCheckBox>("rndFolder")->setChecked(false);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), last);
}

TEST_F(RandomizerTabTest, UndecodablePicturesAreReportedAndSkipped) {
    picture(QStringLiteral("pics/good.png"));
    writeFile(QStringLiteral("pics/broken.png"), "this is text");
    ui.openAnswers.push_back(root() + QStringLiteral("/pics/good.png"));
    control<QPushButton>("rndBrowse")->click();
    control<QCheckBox>("rndFolder")->setChecked(true);
    control<QPushButton>("rndSaveHL")->click();
    EXPECT_EQ(entries("RandomHL"), QStringList{"good.png.dds"});
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image could not be loaded."});
}

TEST_F(RandomizerTabTest, ThousandPictureLimitIsToldBeforeAnyConversion) {
    QDir().mkpath(root() + QStringLiteral("/many"));
    for (int i = 0; i < 1001; ++i)
        writeFile(QStringLiteral("many/%1.png").arg(i), QByteArray()); // quick to refuse
    const FolderPictures listed = ListFolderPictures(root() + QStringLiteral("/many"));
    EXPECT_TRUE(listed.reachedLimit);
    EXPECT_EQ(listed.names.size(), kFolderPictureLimit);

    ui.openAnswers.push_back(root() + QStringLiteral("/many/0.png"));
    control<QPushButton>("rndBrowse")->click(); // an empty file: refused, but chosen
    ui.messages.clear();
    control<QCheckBox>("rndFolder")->setChecked(true);
    control<QPushButton>("rndSaveHL")->click();
    ASSERT_EQ(ui.messages.size(), 1 + kFolderPictureLimit);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Kelvaris will only process the first 1000 images."));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::None);
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, FolderWithoutPicturesLeavesTheScreensTabAlone) {
    const QString chosen = picture(QStringLiteral("pics/only.png"));
    ui.openAnswers.push_back(chosen);
    control<QPushButton>("rndBrowse")->click();
    QFile::remove(chosen);
    control<QCheckBox>("rndFolder")->setChecked(true);
    control<QPushButton>("rndSaveHL")->click();
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), chosen);
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, FramesAreLaidOverLibraryImagesWhenOn) {
    QImage frame(1024, 768, QImage::Format_RGB32);
    frame.fill(qRgb(0, 128, 0));
    const QString framePath = root() + QStringLiteral("/frame.png");
    frame.save(framePath);
    control<QLineEdit>("FrameHC")->setText(framePath);
    control<QCheckBox>("scrFrames")->setChecked(true);

    ui.openAnswers.push_back(picture(QStringLiteral("pics/p.png")));
    control<QPushButton>("rndBrowse")->click();
    control<QPushButton>("rndSaveHC")->click();
    control<QPushButton>("rndSaveHL")->click(); // no login frame set: unframed
    EXPECT_EQ(firstPixel(library("RandomHC") + QStringLiteral("/p.png.dds")),
              QByteArray("\x00\x80\x00\xff", 4));
    EXPECT_EQ(firstPixel(library("RandomHL") + QStringLiteral("/p.png.dds")),
              QByteArray("\x28\x28\xc8\xff", 4));
}

} // namespace
