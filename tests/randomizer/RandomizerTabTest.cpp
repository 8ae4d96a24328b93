#include "randomizer/RandomizerTab.h"

#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "randomizer/LibraryFolder.h"
#include "randomizer/LibraryView.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>

namespace {

class RandomizerTabTest : public FormFixture {
protected:
    // A 64 x 48 picture of one colour.
    QString picture(const QString& relative, QRgb colour = qRgb(200, 40, 40)) {
        return FormFixture::picture(relative, FilledImage(64, 48, colour));
    }
    QString entry(const char* half, const QString& name) const {
        return game + "/Kelvaris/" + QString::fromLatin1(half) + u'/' + name;
    }
    QStringList entries(const char* half) const {
        return QDir(entry(half, {})).entryList(QDir::Files, QDir::Name | QDir::IgnoreCase);
    }
    // The first pixel of a library entry, as blue, green, red, alpha.
    QByteArray firstPixel(const char* half, const QString& name) const {
        return readFile(entry(half, name)).mid(128, 4);
    }
    void useFolder(bool on) { control<QCheckBox>("rndFolder")->setChecked(on); }
};

TEST_F(RandomizerTabTest, OnePictureBecomesAnEntryOfEachHalfFramedWhereFramesAreOn) {
    control<QLineEdit>("FrameHC")->setText(
        FormFixture::picture("frame.png", FilledImage(1024, 768, qRgb(0, 128, 0))));
    control<QCheckBox>("scrFrames")->setChecked(true);
    const QString path = picture("pics/Sunset Glow.png");
    choose("rndBrowse", path);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), path);
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), path); // the Screens tab shows it too
    click("rndSaveHL");
    click("rndSaveHL"); // the same picture again: one entry
    click("rndSaveHC");

    const QString name = "Sunset Glow.png.dds";
    EXPECT_EQ(entries("RandomHL"), QStringList{name});
    EXPECT_EQ(entries("RandomHC"), QStringList{name});
    // A bare 1024 x 1024 DDS continued one row past its header.
    EXPECT_EQ(QFileInfo(entry("RandomHL", name)).size(), 128 + 1025 * 1024 * 4);
    EXPECT_EQ(firstPixel("RandomHL", name), QByteArray("\x28\x28\xc8\xff", 4)); // no login frame
    EXPECT_EQ(firstPixel("RandomHC", name), QByteArray("\x00\x80\x00\xff", 4));
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(RandomizerTabTest, FolderBoxAddsEveryPictureInTheFolderAndSkipsBadOnes) {
    picture("pics/B.JPEG");
    picture("pics/c.bmp");
    writeFile("pics/broken.png", "this is text");
    writeFile("pics/notes.txt", "not a picture");
    writeFile("pics/scan.tiff", "not taken");
    choose("rndBrowse", picture("pics/a.png"));
    useFolder(true);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), root() + "/pics");
    click("rndSaveHC");

    EXPECT_EQ(entries("RandomHC"), QStringList({"a.png.dds", "B.JPEG.dds", "c.bmp.dds"}));
    EXPECT_EQ(ui.messageTexts(), QStringList{"Image could not be loaded."});
    // The last picture of the batch stays loaded and named on the Screens tab.
    const QString last = control<QLineEdit>("scrImage")->text();
    EXPECT_TRUE(last.startsWith(root() + "/pics/"));
    useFolder(false);
    EXPECT_EQ(control<QLineEdit>("rndFile")->text(), last);

    // A folder without pictures leaves the Screens tab alone.
    QDir(root() + "/pics").removeRecursively();
    QDir().mkpath(root() + "/pics");
    useFolder(true);
    click("rndSaveHL");
    EXPECT_EQ(control<QLineEdit>("scrImage")->text(), last);
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, ThousandPictureLimitIsToldBeforeAnyConversion) {
    for (int i = 0; i < 1001; ++i)
        writeFile(QStringLiteral("many/%1.png").arg(i), QByteArray()); // quick to refuse
    const FolderPictures listed = ListFolderPictures(root() + "/many");
    EXPECT_TRUE(listed.reachedLimit);
    EXPECT_EQ(listed.names.size(), kFolderPictureLimit);

    choose("rndBrowse", root() + "/many/0.png"); // an empty file: refused, but chosen
    ui.messages.clear();
    useFolder(true);
    click("rndSaveHL");
    ASSERT_EQ(ui.messages.size(), 1 + kFolderPictureLimit);
    EXPECT_EQ(ui.messages[0].text, "Kelvaris will only process the first 1000 images.");
    EXPECT_TRUE(entries("RandomHL").isEmpty());
}

TEST_F(RandomizerTabTest, TheGameLauncherStartsTheRandomizerWithTheArgumentsTyped) {
    control<QLineEdit>("rndClientArgs")->setText("-project \"my server\" -x");
    click("rndLauncher");
    const QString launcher = root() + "/data-home/applications/kelvaris-randomizer.desktop";
    const QByteArray entry = readFile(launcher);
    EXPECT_TRUE(entry.contains(" -randomizer -project \"my server\" -x\n")) << entry.constData();
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(launcher));
}

TEST_F(RandomizerTabTest, TheLibraryIsShownAsPicturesAndEntriesCanBeRemoved) {
    choose("rndBrowse", picture(QStringLiteral("pics/one.png")));
    click("rndSaveHL");
    choose("rndBrowse", picture(QStringLiteral("pics/two.png"), qRgb(10, 200, 10)));
    click("rndSaveHL");
    storeSetting(QStringLiteral("RandomHL"), QStringLiteral("two.png.dds"));
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
