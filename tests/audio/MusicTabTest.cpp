#include "audio/MusicTab.h"

#include "SoundFixtures.h"
#include "app/PathUtils.h"
#include "common/FormFixture.h"

#include <QCheckBox>
#include <QPushButton>

namespace {

using MusicTabTest = FormFixture;

// One conversion is written to every ticked box's files; the written boxes
// are grayed until ticked again.
TEST_F(MusicTabTest, SavingConvertsOnceAndGraysTheWrittenBoxes) {
    ASSERT_FALSE(Sound("tone.wav").isEmpty()) << "ffmpeg could not make the test sounds";
    const auto box = [this](const char* name) { return control<QCheckBox>(name); };
    auto* save = control<QPushButton>("sndSave");
    choose("sndBrowse", Sound("tone.mp3"));
    box("sndBoomBox_0")->click();
    box("sndHeroLogin")->click();
    save->click();
    EXPECT_TRUE(ui.messages.isEmpty()) << ui.messageTexts().join('|').toStdString();
    const QByteArray written = readFile(WorkFolder() + "/converted.ogg");
    EXPECT_TRUE(ReadOgg(WorkFolder() + "/converted.ogg").valid);
    const QString ogg = game + "/data/sound/Ogg/";
    EXPECT_EQ(readFile(ogg + "BoomBox/Track9_loop.ogg"), written); // Altitude
    EXPECT_EQ(readFile(ogg + "FrontEnd/H_music1_loop.ogg"), written);
    EXPECT_EQ(box("sndHeroLogin")->checkState(), Qt::PartiallyChecked);
    EXPECT_FALSE(save->isEnabled());
    box("sndBoomBox_0")->click(); // a grayed box ticks again
    EXPECT_EQ(box("sndBoomBox_0")->checkState(), Qt::Checked);
    EXPECT_TRUE(save->isEnabled());
}

} // namespace
