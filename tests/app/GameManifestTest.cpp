#include "app/GameManifest.h"

#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "audio/MusicWriter.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "image/cDIBSection.h"
#include "texture/Catalogue.h"
#include "texture/CatalogueTextures.h"
#include "texture/TextureWriter.h"

#include <QDir>

namespace {

class GameManifestTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = makeGame();
        picture.CreateFromPicture(GradientImage(32, 32));
    }
    bool writeIcon() {
        return WriteTexture(TextureRequest::CatalogueTexture(game, icon, picture, nullptr),
                            MakeTextureContext(game, false), busy, ui);
    }
    QString iconFile() const {
        return game + QStringLiteral("/data/texture_library/GUI/icon.texture");
    }
    QString backup() const { return GameManifest::BackupPath(game, iconFile()); }

    QString game;
    cDIBSection picture;
    const CatalogueEntry icon{QStringLiteral("Icon"), 32, 32, QStringLiteral("texture_library/GUI"),
                              QStringLiteral("icon")};
    FakeUi ui;
    HeadlessBusy busy;
};

TEST_F(GameManifestTest, AnotherModsTextureIsKeptOnceAndGivenBack) {
    writeFile(QStringLiteral("game/data/texture_library/GUI/icon.texture"), "another mod's icon");
    ASSERT_TRUE(writeIcon());
    EXPECT_EQ(readFile(backup()), QByteArray("another mod's icon"));
    const QList<GameManifest::Entry> written = GameManifest::Entries(game);
    ASSERT_EQ(written.size(), 1);
    EXPECT_EQ(written[0].relative, QStringLiteral("data/texture_library/GUI/icon.texture"));
    EXPECT_EQ(written[0].size, QFileInfo(iconFile()).size());

    // Writing over Kelvaris's own texture keeps the backup as it was.
    picture.CreateFromPicture(GradientImage(32, 32, 200));
    ASSERT_TRUE(writeIcon());
    EXPECT_EQ(readFile(backup()), QByteArray("another mod's icon"));

    EXPECT_EQ(RestoreCatalogueTextures(game, {icon}, ui), 1);
    EXPECT_EQ(readFile(iconFile()), QByteArray("another mod's icon"));
    EXPECT_FALSE(QFileInfo::exists(backup()));
    EXPECT_TRUE(GameManifest::Entries(game).isEmpty());
}

TEST_F(GameManifestTest, WithoutABackupRestoreDeletesAndAFullDiskLosesNothing) {
    ASSERT_TRUE(writeIcon()); // nothing was there
    EXPECT_FALSE(QFileInfo::exists(backup()));
    EXPECT_TRUE(GameManifest::Restore(game, iconFile()));
    EXPECT_FALSE(QFileInfo::exists(iconFile()));

    // A foreign file and a full disk: the write fails, the file stays where
    // the game reads it.
    writeFile(QStringLiteral("game/data/texture_library/GUI/icon.texture"), "the player's own");
    FailWritesAfter(0);
    EXPECT_FALSE(writeIcon());
    FailWritesAfter(-1);
    EXPECT_EQ(readFile(iconFile()), QByteArray("the player's own"));
}

TEST_F(GameManifestTest, ADamagedManifestOnlyMeansMoreBackups) {
    ASSERT_TRUE(writeIcon());
    writeFile(QStringLiteral("game/Kelvaris/manifest.txt"),
              QByteArray("\x01\x02garbage\n\t\t\n", 14));
    const QByteArray ours = readFile(iconFile());
    ASSERT_TRUE(writeIcon());
    EXPECT_EQ(readFile(backup()), ours); // taken for another's: kept, never lost
    EXPECT_EQ(GameManifest::Entries(game).size(), 1);
}

TEST_F(GameManifestTest, ThePlayersOwnMusicIsKept) {
    const QString song = writeFile(QStringLiteral("song.ogg"), "OggS new");
    const QString own =
        writeFile(QStringLiteral("game/data/sound/Ogg/FrontEnd/H_music1_loop.ogg"), "OggS mine");
    MusicBoxStates boxes{{QStringLiteral("sndHeroLogin"), Qt::Checked}};
    ASSERT_TRUE(WriteMusicTargets(song, game, boxes));
    EXPECT_EQ(readFile(own), QByteArray("OggS new"));
    EXPECT_EQ(readFile(GameManifest::BackupPath(game, own)), QByteArray("OggS mine"));
    EXPECT_EQ(GameManifest::Entries(game).size(), 2);
    EXPECT_TRUE(GameManifest::Restore(game, own));
    EXPECT_EQ(readFile(own), QByteArray("OggS mine"));
}

} // namespace
