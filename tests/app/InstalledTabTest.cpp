#include "app/InstalledTab.h"

#include "app/BusyHost.h"
#include "audio/MusicWriter.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "image/cDIBSection.h"
#include "texture/ScreenInstall.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QLabel>
#include <QPushButton>
#include <QTreeWidget>

namespace {

using InstalledTabTest = FormFixture;

TEST_F(InstalledTabTest, ListsWhatKelvarisPlacedAndRestoresIt) {
    const QString song = writeFile(QStringLiteral("song.ogg"), "OggS new");
    writeFile(QStringLiteral("game/data/sound/Ogg/FrontEnd/H_music1_loop.ogg"), "OggS mine");
    MusicBoxStates boxes{{QStringLiteral("sndHeroLogin"), Qt::Checked}};
    ASSERT_TRUE(WriteMusicTargets(song, game, boxes));
    cDIBSection picture;
    picture.CreateFromPicture(GradientImage(1024, 768));
    HeadlessBusy busy;
    ASSERT_TRUE(
        WriteScreenPicture(kLoginScreen, picture, MakeTextureContext(game, false), busy, ui));

    auto* tab = form->findChild<InstalledTab*>();
    tab->Refresh();
    auto* files = control<QTreeWidget>("insFiles");
    ASSERT_EQ(files->topLevelItemCount(), 3);
    EXPECT_EQ(control<QLabel>("insSummary")->text(),
              QStringLiteral("3 file(s), 3 placed by Kelvaris"));
    int kept = 0, withPicture = 0;
    for (int i = 0; i < 3; ++i) {
        kept += files->topLevelItem(i)->text(4) == u"kept";
        withPicture += !files->topLevelItem(i)->icon(0).isNull();
    }
    EXPECT_EQ(kept, 1);        // the player's own music was kept
    EXPECT_EQ(withPicture, 1); // the screen shows as a picture

    // Restore all, after saying yes: the player's music is back, the rest gone.
    control<QPushButton>("insRestoreAll")->click(); // "No" by default
    EXPECT_EQ(files->topLevelItemCount(), 3);
    ui.answers.push_back(MsgAnswer::Yes);
    control<QPushButton>("insRestoreAll")->click();
    // The player's own music is back, listed, and not Kelvaris's to remove.
    ASSERT_EQ(files->topLevelItemCount(), 1);
    EXPECT_EQ(files->topLevelItem(0)->text(5), QStringLiteral("?"));
    EXPECT_EQ(readFile(game + QStringLiteral("/data/sound/Ogg/FrontEnd/H_music1_loop.ogg")),
              QByteArray("OggS mine"));
    EXPECT_FALSE(control<QPushButton>("insRestoreAll")->isEnabled());
}

} // namespace
