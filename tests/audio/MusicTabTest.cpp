#include "audio/MusicTab.h"

#include "SoundFixtures.h"
#include "app/ControlTag.h"
#include "app/Form1.h"
#include "app/PathUtils.h"
#include "app/SettingsTab.h"
#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QCheckBox>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>

namespace {

class MusicTabTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        ASSERT_TRUE(Sounds().ready);
        form = std::make_unique<Form1>(ui, QStringList());
        tab = form->findChild<MusicTab*>();
        ASSERT_NE(tab, nullptr);
        game = root() + QStringLiteral("/game");
        QDir().mkpath(game);
        form->Settings().SetGameFolder(game);
    }
    template <typename T = QCheckBox> T* control(const QString& name) {
        return form->findChild<T*>(name);
    }
    QCheckBox* box(const char* name) { return control(QString::fromLatin1(name)); }
    QLineEdit* sndFile() { return control<QLineEdit>(QStringLiteral("sndFile")); }
    QPushButton* sndSave() { return control<QPushButton>(QStringLiteral("sndSave")); }
    // Ticks a box as the player's click does.
    void tick(QCheckBox* box) { box->click(); }
    void browse(const QString& file) {
        ui.openAnswers.push_back(file);
        tab->sndBrowse_Click();
    }
    QString ogg(const QString& relative) const {
        return game + QStringLiteral("/data/sound/Ogg/") + relative;
    }
    QString converted() const { return WorkFolder() + QStringLiteral("/converted.ogg"); }

    FakeUi ui;
    std::unique_ptr<Form1> form;
    MusicTab* tab = nullptr;
    QString game;
};

TEST_F(MusicTabTest, ShowsTheDesignedControls) {
    QStringList frames;
    for (const QGroupBox* frame : tab->findChildren<QGroupBox*>())
        frames << frame->title();
    EXPECT_EQ(frames, QStringList({"Source sound file", "BoomBox", "Login", "Pocket D"}));
    EXPECT_EQ(box("sndBoomBox_0")->text(), QStringLiteral("Altitude"));
    EXPECT_EQ(Tag(box("sndBoomBox_0")), QStringLiteral("9"));
    EXPECT_EQ(Tag(box("sndBoomBox_24")), QStringLiteral("23"));
    EXPECT_EQ(box("sndBoomBox_24")->text(), QStringLiteral("Spaz"));
    EXPECT_EQ(box("sndHeroLogin")->text(), QStringLiteral("Heroes login"));
    EXPECT_EQ(box("sndVillainLogin")->text(), QStringLiteral("Villains login"));
    EXPECT_EQ(box("sndDanceFloor")->text(), QStringLiteral("Dance floor"));
    EXPECT_EQ(box("sndBlueSide")->text(), QStringLiteral("Blue side"));
    EXPECT_EQ(box("sndRedSide")->text(), QStringLiteral("Red side"));
    EXPECT_EQ(sndSave()->text(), QStringLiteral("Save selected tracks"));
    EXPECT_EQ(control<QPushButton>(QStringLiteral("sndBrowse"))->text(),
              QStringLiteral("Browse..."));
    EXPECT_FALSE(sndSave()->isEnabled());
}

TEST_F(MusicTabTest, BrowseTakesADecodableFileAndRemembersItsFolder) {
    modRegistry::SetValue(kSettingsKey, QStringLiteral("LastSoundDir"), QStringLiteral("/music"));
    browse(Sounds().mp3);
    ASSERT_EQ(ui.openRequests.size(), 1);
    EXPECT_EQ(ui.openRequests[0].startFolder, QStringLiteral("/music"));
    EXPECT_EQ(ui.openRequests[0].filter,
              QStringLiteral("Sound files (mp1,mp2,mp3,mp4,m4a,aac,ogg,wav,wma)|*.mp1;*.mp2;"
                             "*.mp3;*.mp4;*.m4a;*.aac;*.ogg;*.wav;*.wma"));
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_EQ(sndFile()->text(), Sounds().mp3);
    EXPECT_EQ(Tag(sndFile()), Sounds().mp3);
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastSoundDir")),
              ReturnPath(Sounds().mp3));
    EXPECT_FALSE(sndSave()->isEnabled());
    tick(box("sndBoomBox_3"));
    EXPECT_TRUE(sndSave()->isEnabled());
}

TEST_F(MusicTabTest, BrowseRefusesWhatNothingDecodes) {
    browse(Sounds().mp3);
    for (const QString& file : {Sounds().textWav, Sounds().empty, Sounds().noAudio}) {
        browse(file);
        ASSERT_FALSE(ui.messages.isEmpty());
        EXPECT_TRUE(ui.messages.last().text.startsWith(
            QStringLiteral("No suitable decoder for this file.\r\n\r\nThis error is normally")));
        EXPECT_EQ(ui.messages.last().icon, MsgIcon::Exclamation);
        EXPECT_EQ(sndFile()->text(), Sounds().mp3);
        EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastSoundDir")),
                  ReturnPath(file));
    }
    EXPECT_EQ(ui.messages.size(), 3);
}

TEST_F(MusicTabTest, ACancelledBrowseChangesNothing) {
    browse(QString());
    EXPECT_EQ(ui.openRequests.size(), 1);
    EXPECT_TRUE(sndFile()->text().isEmpty());
    EXPECT_TRUE(modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastSoundDir")).isEmpty());
}

TEST_F(MusicTabTest, MissingEncoderLibrariesAreReportedAtEachBrowse) {
    tab->SetEncoderLibraries({QStringLiteral("libkelvaris-missing.so"), QStringLiteral("x")});
    browse(Sounds().mp3);
    browse(Sounds().mp3);
    EXPECT_EQ(ui.messageTexts(), QStringList({"Unable to initialize OGG encoder.",
                                              "Unable to initialize OGG encoder."}));
    EXPECT_TRUE(ui.openRequests.isEmpty());
    EXPECT_TRUE(sndFile()->text().isEmpty());
}

TEST_F(MusicTabTest, TheFolderBoxSwitchesBetweenFileAndFolder) {
    browse(Sounds().wav);
    box("sndFolder")->setChecked(true); // as the stored setting does at start-up
    EXPECT_EQ(sndFile()->text(), ReturnPath(Sounds().wav));
    box("sndFolder")->click();
    EXPECT_EQ(sndFile()->text(), Sounds().wav);
}

TEST_F(MusicTabTest, SavingConvertsOnceAndGraysTheWrittenBoxes) {
    browse(Sounds().mp3);
    tick(box("sndBoomBox_0"));
    tick(box("sndHeroLogin"));
    sndSave()->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join('|').toStdString();
    const OggReport report = ReadOgg(ogg(QStringLiteral("BoomBox/Track9_loop.ogg")));
    EXPECT_TRUE(report.valid) << report.text.toStdString();
    EXPECT_EQ(report.channels, 2);
    EXPECT_NEAR(report.seconds, 10.0, 2048.0 / 44100);
    const QByteArray written = readFile(converted());
    EXPECT_EQ(readFile(ogg(QStringLiteral("FrontEnd/H_music1_loop.ogg"))), written);
    EXPECT_EQ(readFile(ogg(QStringLiteral("FrontEnd/H_music2_loop.ogg"))), written);
    EXPECT_FALSE(QFileInfo::exists(ogg(QStringLiteral("V_FrontEnd"))));
    EXPECT_EQ(box("sndBoomBox_0")->checkState(), Qt::PartiallyChecked);
    EXPECT_EQ(box("sndHeroLogin")->checkState(), Qt::PartiallyChecked);
    EXPECT_FALSE(sndSave()->isEnabled());
    EXPECT_FALSE(form->IsBusy());
    // Clicking a grayed box ticks it again.
    tick(box("sndBoomBox_0"));
    EXPECT_EQ(box("sndBoomBox_0")->checkState(), Qt::Checked);
    EXPECT_TRUE(sndSave()->isEnabled());
}

TEST_F(MusicTabTest, HeroesLoginAloneMakesItsFolderAndTheAlwaysMadeOnes) {
    browse(Sounds().ogg);
    tick(box("sndHeroLogin"));
    sndSave()->click();
    EXPECT_TRUE(QFileInfo::exists(ogg(QStringLiteral("FrontEnd/H_music1_loop.ogg"))));
    EXPECT_TRUE(QFileInfo::exists(ogg(QStringLiteral("FrontEnd/H_music2_loop.ogg"))));
    EXPECT_TRUE(QDir(ogg(QStringLiteral("BoomBox"))).isEmpty());
    EXPECT_TRUE(QDir(ogg(QStringLiteral("Rave"))).isEmpty());
    EXPECT_FALSE(QFileInfo::exists(ogg(QStringLiteral("V_FrontEnd"))));
    EXPECT_EQ(box("sndHeroLogin")->checkState(), Qt::PartiallyChecked);
}

TEST_F(MusicTabTest, AllTwentyFiveTracksAreWritten) {
    browse(Sounds().wav);
    for (int i = 0; i < 25; ++i)
        tick(control(QStringLiteral("sndBoomBox_%1").arg(i)));
    sndSave()->click();
    for (int track = 1; track <= 25; ++track)
        EXPECT_TRUE(QFileInfo::exists(ogg(QStringLiteral("BoomBox/Track%1_loop.ogg").arg(track))));
    for (int i = 0; i < 25; ++i)
        EXPECT_EQ(control(QStringLiteral("sndBoomBox_%1").arg(i))->checkState(),
                  Qt::PartiallyChecked);
}

TEST_F(MusicTabTest, AnOggSourceIsCopiedAsItIs) {
    const QString upper = root() + QStringLiteral("/Song.OGG");
    ASSERT_TRUE(QFile::copy(Sounds().ogg, upper));
    browse(upper);
    tick(box("sndRedSide"));
    sndSave()->click();
    EXPECT_EQ(readFile(ogg(QStringLiteral("Rave/NewRave3_loop.ogg"))), readFile(Sounds().ogg));
    EXPECT_FALSE(QFileInfo::exists(converted()));
    EXPECT_EQ(box("sndRedSide")->checkState(), Qt::PartiallyChecked);
}

TEST_F(MusicTabTest, AFolderShownInsteadOfAFileFailsToConvert) {
    browse(Sounds().wav);
    box("sndFolder")->setChecked(true);
    tick(box("sndDanceFloor"));
    sndSave()->click();
    EXPECT_EQ(ui.messageTexts(), QStringList({"Sound file conversion failed."}));
    EXPECT_EQ(box("sndDanceFloor")->checkState(), Qt::Checked);
    EXPECT_TRUE(sndSave()->isEnabled());
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(MusicTabTest, ACancelledConversionCopiesNothingAndSaysNothing) {
    browse(Sounds().wav);
    tick(box("sndBoomBox_1"));
    tick(box("sndBlueSide"));
    // The click lands while the conversion yields to the window.
    QTimer::singleShot(0, form.get(), &Form1::Quit_Click);
    sndSave()->click();
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_FALSE(QFileInfo::exists(ogg(QStringLiteral("BoomBox/Track11_loop.ogg"))));
    EXPECT_FALSE(QFileInfo::exists(ogg(QStringLiteral("Rave"))));
    EXPECT_EQ(box("sndBoomBox_1")->checkState(), Qt::Checked);
    EXPECT_EQ(box("sndBlueSide")->checkState(), Qt::Checked);
    EXPECT_FALSE(form->IsBusy());
    EXPECT_FALSE(form->IsUnloaded());
}

TEST_F(MusicTabTest, AReadOnlyTargetKeepsItsBoxTicked) {
    QDir().mkpath(ogg(QStringLiteral("Rave/NewRave6_loop.ogg")));
    browse(Sounds().wav);
    tick(box("sndBlueSide"));
    sndSave()->click();
    EXPECT_TRUE(QFileInfo::exists(ogg(QStringLiteral("Rave/NewRave1_loop.ogg"))));
    EXPECT_TRUE(QFileInfo::exists(ogg(QStringLiteral("Rave/NewRave2_loop.ogg"))));
    EXPECT_EQ(box("sndBlueSide")->checkState(), Qt::Checked);
    EXPECT_TRUE(ui.messages.isEmpty());
    EXPECT_TRUE(sndSave()->isEnabled());
    // No temporary copy is left beside the refused target.
    EXPECT_EQ(QDir(ogg(QStringLiteral("Rave"))).entryList(QDir::Files).size(), 2);
}

TEST_F(MusicTabTest, SixChannelsAreSavedAsStereo) {
    browse(Sounds().sixChannels);
    tick(box("sndVillainLogin"));
    sndSave()->click();
    const OggReport report = ReadOgg(ogg(QStringLiteral("V_FrontEnd/V_Music1_loop.ogg")));
    EXPECT_TRUE(report.valid);
    EXPECT_EQ(report.channels, 2);
    EXPECT_EQ(report.rate, 48000);
}

TEST_F(MusicTabTest, SavingWithoutAGameFolderWritesNothing) {
    browse(Sounds().ogg);
    tick(box("sndHeroLogin"));
    form->Settings().SetGameFolder(QString());
    sndSave()->click();
    EXPECT_EQ(ui.messageTexts(),
              QStringList({"The game folder was not found. Choose it on the Settings tab first."}));
    EXPECT_EQ(box("sndHeroLogin")->checkState(), Qt::Checked);
    EXPECT_FALSE(form->IsBusy());
}

TEST_F(MusicTabTest, TheSoundFolderSettingIsLoadedAndSaved) {
    modRegistry::SetValue(kSettingsKey, QStringLiteral("SoundFolder"), QStringLiteral("1"));
    form->Form_Load();
    EXPECT_TRUE(box("sndFolder")->isChecked());
    box("sndFolder")->click();
    form->Unload();
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("SoundFolder")),
              QStringLiteral("0"));
}

} // namespace
