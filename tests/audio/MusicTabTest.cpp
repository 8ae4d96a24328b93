#include "audio/MusicTab.h"

#include "SoundFixtures.h"
#include "app/PathUtils.h"
#include "audio/MusicTables.h"
#include "common/FormFixture.h"

#include <QCheckBox>
#include <QFile>
#include <QFileInfo>
#include <QLineEdit>
#include <QPushButton>

namespace {

class MusicTabTest : public FormFixture {
protected:
    void SetUp() override {
        FormFixture::SetUp();
        ASSERT_FALSE(Sound("tone.wav").isEmpty()) << "ffmpeg could not make the test sounds";
        tab = form->findChild<MusicTab*>();
        ASSERT_NE(tab, nullptr);
    }
    QCheckBox* box(const QString& name) { return form->findChild<QCheckBox*>(name); }
    QLineEdit* sndFile() { return control<QLineEdit>("sndFile"); }
    QPushButton* sndSave() { return control<QPushButton>("sndSave"); }
    void browse(const QString& file) { choose("sndBrowse", file); }
    // Browses to the file, ticks the boxes as the player's clicks do, saves.
    void save(const QString& file, std::initializer_list<const char*> boxes) {
        browse(file);
        for (const char* name : boxes)
            box(name)->click();
        sndSave()->click();
    }
    QString ogg(const char* relative) const {
        return game + "/data/sound/Ogg/" + QLatin1String(relative);
    }

    MusicTab* tab = nullptr;
};

TEST_F(MusicTabTest, BrowseTakesADecodableFileAndRemembersItsFolder) {
    storeSetting("LastSoundDir", "/music");
    browse(QString()); // cancelled: the folder is kept
    browse(Sound("tone.mp3"));
    EXPECT_EQ(ui.openRequests.last().startFolder, "/music");
    EXPECT_EQ(sndFile()->text(), Sound("tone.mp3"));
    EXPECT_EQ(setting("LastSoundDir"), ReturnPath(Sound("tone.mp3")));
    browse(Sound("text.wav"));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.startsWith("No suitable decoder"));
    EXPECT_EQ(sndFile()->text(), Sound("tone.mp3"));
    EXPECT_FALSE(sndSave()->isEnabled());
    box(BoomBoxName(3))->click();
    EXPECT_TRUE(sndSave()->isEnabled());
}

TEST_F(MusicTabTest, SavingConvertsOnceAndGraysTheWrittenBoxes) {
    save(Sound("tone.mp3"), {"sndBoomBox_0", "sndHeroLogin"});
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join('|').toStdString();
    const QByteArray written = readFile(WorkFolder() + "/converted.ogg");
    EXPECT_TRUE(ReadOgg(WorkFolder() + "/converted.ogg").valid);
    EXPECT_EQ(readFile(ogg("BoomBox/Track9_loop.ogg")), written); // Altitude
    EXPECT_EQ(readFile(ogg("FrontEnd/H_music1_loop.ogg")), written);
    EXPECT_EQ(box("sndHeroLogin")->checkState(), Qt::PartiallyChecked);
    EXPECT_FALSE(sndSave()->isEnabled());
    box("sndBoomBox_0")->click(); // a grayed box ticks again
    EXPECT_EQ(box("sndBoomBox_0")->checkState(), Qt::Checked);
    EXPECT_TRUE(sndSave()->isEnabled());
}

TEST_F(MusicTabTest, AnOggSourceIsCopiedAsItIs) {
    const QString upper = root() + "/Song.OGG";
    ASSERT_TRUE(QFile::copy(Sound("tone.ogg"), upper));
    save(upper, {"sndBlueSide"});
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_EQ(readFile(ogg("Rave/NewRave1_loop.ogg")), readFile(Sound("tone.ogg")));
    EXPECT_FALSE(QFileInfo::exists(WorkFolder() + "/converted.ogg"));
    EXPECT_EQ(box("sndBlueSide")->checkState(), Qt::PartiallyChecked);
}

} // namespace
