#include "randomizer/RandomizerTab.h"

#include "app/modRegistry.h"
#include "common/FormFixture.h"
#include "randomizer/LibraryFolder.h"
#include "randomizer/LibraryView.h"

#include <QCheckBox>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>

namespace {

class RandomizerTabTest : public FormFixture {
protected:
    // A 64 x 48 picture of one colour, red unless told.
    QString picture(const QString& relative, QRgb colour = qRgb(200, 40, 40)) {
        QImage image(64, 48, QImage::Format_RGB32);
        image.fill(colour);
        const QString path = writeFile(relative, {});
        image.save(path, QFileInfo(path).suffix().toLower() == u"jpeg" ? "JPEG" : nullptr);
        return path;
    }
    QString entry(const char* half, const QString& name) const {
        return game + QStringLiteral("/Kelvaris/") + QString::fromLatin1(half) + u'/' + name;
    }
    QStringList entries(const char* half) const {
        QStringList names = QDir(entry(half, {})).entryList(QDir::Files);
        names.sort();
        return names;
    }
    // The first pixel of a library entry, as blue, green, red, alpha.
    QByteArray firstPixel(const char* half, const QString& name) const {
        return readFile(entry(half, name)).mid(128, 4);
    }
    void choose(const QString& path) {
        ui.openAnswers.push_back(path);
        control<QPushButton>("rndBrowse")->click();
    }
    void save(const char* button) { control<QPushButton>(button)->click(); }
    void click(const char* button) { control<QPushButton>(button)->click(); }
};

TEST_F(RandomizerTabTest, OnePictureBecomesAnEntryOfEachHalfFramedWhereFramesAreOn) {
    QImage frame(1024, 768, QImage::Format_RGB32);
    frame.fill(qRgb(0, 128, 0));
    const QString framePath = root() + QStringLiteral("/frame.png");
    frame.save(framePath);
    control<QLineEdit>("FrameHC")->setText(framePath);
    control<QCheckBox>("scrFrames")->setChecked(true);

    const QString path = picture(QStringLiteral("pics/Sunset Glow.png"));
    choose(path);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), path);
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path); // the Screens tab shows it too
    save("rndSaveHL");
    save("rndSaveHL"); // the same picture again: one entry
    save("rndSaveHC");

    const QString name = QStringLiteral("Sunset Glow.png.dds");
    EXPECT_EQ(entries("RandomHL"), QStringList{name});
    EXPECT_EQ(entries("RandomHC"), QStringList{name});
    // A bare 1024 x 1024 DDS continued one row past its header.
    EXPECT_EQ(QFileInfo(entry("RandomHL", name)).size(), 128 + 1025 * 1024 * 4);
    EXPECT_EQ(firstPixel("RandomHL", name), QByteArray("\x28\x28\xc8\xff", 4)); // no login frame
    EXPECT_EQ(firstPixel("RandomHC", name), QByteArray("\x00\x80\x00\xff", 4));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(RandomizerTabTest, FolderBoxAddsEveryPictureInTheFolderAndSkipsBadOnes) {
    picture(QStringLiteral("pics/B.JPEG"));
    picture(QStringLiteral("pics/c.bmp"));
    writeFile(QStringLiteral("pics/broken.png"), "this is text");
    writeFile(QStringLiteral("pics/notes.txt"), "not a picture");
    writeFile(QStringLiteral("pics/scan.tiff"), "not taken");
    choose(picture(QStringLiteral("pics/a.png")));

    control<QCheckBox>("rndFolder")->setChecked(true);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), root() + QStringLiteral("/pics"));
    save("rndSaveHC");

    EXPECT_EQ(entries("RandomHC"), QStringList({"B.JPEG.dds", "a.png.dds", "c.bmp.dds"}));
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image could not be loaded."});
    EXPECT_EQ(control<QPushButton>("rndSaveHC")->text(),
              QStringLiteral("Add to character selection screen"));
    // The last picture of the batch stays loaded and named on the Screens tab.
    const QString last = control<QLineEdit>("scrImage")->text();
    EXPECT_TRUE(last.startsWith(root() + QStringLiteral("/pics/")));
    control<QCheckBox>("rndFolder")->setChecked(false);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), last);
}

TEST_F(RandomizerTabTest, ThousandPictureLimitIsToldBeforeAnyConversion) {
    for (int i = 0; i < 1001; ++i)
        writeFile(QStringLiteral("many/%1.png").arg(i), QByteArray()); // quick to refuse
    const FolderPictures listed = ListFolderPictures(root() + QStringLiteral("/many"));
    EXPECT_TRUE(listed.reachedLimit);
    EXPECT_EQ(listed.names.size(), kFolderPictureLimit);

    choose(root() + QStringLiteral("/many/0.png")); // an empty file: refused, but chosen
    ui.messages.clear();
    control<QCheckBox>("rndFolder")->setChecked(true);
    save("rndSaveHL");
    ASSERT_EQ(ui.messages.size(), 1 + kFolderPictureLimit);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Kelvaris will only process the first 1000 images."));
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::None);
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, FolderWithoutPicturesLeavesTheScreensTabAlone) {
    const QString chosen = picture(QStringLiteral("pics/only.png"));
    choose(chosen);
    QFile::remove(chosen);
    control<QCheckBox>("rndFolder")->setChecked(true);
    save("rndSaveHL");
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), chosen);
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, TheGameLauncherStartsTheRandomizerWithTheArgumentsTyped) {
    control<QLineEdit>("rndClientArgs")->setText(QStringLiteral("-project \"my server\" -x"));
    control<QPushButton>("rndLauncher")->click();
    const QString launcher =
        root() + QStringLiteral("/data-home/applications/kelvaris-randomizer.desktop");
    const QByteArray entry = readFile(launcher);
    EXPECT_TRUE(entry.contains(" -randomizer -project \"my server\" -x\n")) << entry.constData();
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(launcher));
}

TEST_F(RandomizerTabTest, TheLibraryIsShownAsPicturesAndEntriesCanBeRemoved) {
    choose(picture(QStringLiteral("pics/one.png")));
    save("rndSaveHL");
    choose(picture(QStringLiteral("pics/two.png"), qRgb(10, 200, 10)));
    save("rndSaveHL");
    modRegistry::SetValue(kSettingsKey, QStringLiteral("RandomHL"), QStringLiteral("two.png.dds"));
    auto* view = form->findChildren<LibraryView*>().first();
    view->Refresh();
    view->FinishThumbnails();
    auto* list = control<QListWidget>("rndLibraryHL");
    ASSERT_EQ(list->count(), 2);
    EXPECT_EQ(control<QLabel>("rndCountHL")->text(), QStringLiteral("2 picture(s)"));
    for (int i = 0; i < 2; ++i)
        EXPECT_FALSE(list->item(i)->icon().isNull()) << i;
    // The last game start's pick is marked.
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(list->item(i)->font().bold(), list->item(i)->text() == u"two.png.dds");

    // Removing asks first; "No" keeps the entry.
    list->item(0)->setSelected(true);
    const QString removed = list->item(0)->text();
    click("rndRemoveHL");
    EXPECT_EQ(entries("RandomHL").size(), 2);
    ui.answers.push_back(MsgAnswer::Yes);
    click("rndRemoveHL");
    EXPECT_EQ(entries("RandomHL"),
              QStringList{removed == u"one.png.dds" ? "two.png.dds" : "one.png.dds"});
    EXPECT_EQ(list->count(), 1);
}

} // namespace
