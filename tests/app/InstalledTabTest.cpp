#include "app/InstalledTab.h"

#include "app/BusyHost.h"
#include "audio/MusicWriter.h"
#include "common/FormFixture.h"
#include "common/TestPictures.h"
#include "image/cDIBSection.h"
#include "texture/ScreenInstall.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

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
    int kept = 0;
    for (int i = 0; i < 3; ++i)
        kept += files->topLevelItem(i)->text(4) == u"kept";
    EXPECT_EQ(kept, 1); // the player's own music was kept

    // Restore all, after saying yes: the player's music is back, the rest gone.
    control<QPushButton>("insRestoreAll")->click(); // "No" by default
    EXPECT_EQ(files->topLevelItemCount(), 3);
    ui.answers.push_back(MsgAnswer::Yes);
    control<QPushButton>("insRestoreAll")->click();
    EXPECT_EQ(files->topLevelItemCount(), 1); // the player's own music, listed
    EXPECT_EQ(readFile(game + QStringLiteral("/data/sound/Ogg/FrontEnd/H_music1_loop.ogg")),
              QByteArray("OggS mine"));
}

} // namespace
