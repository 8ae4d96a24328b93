#include "audio/MusicWriter.h"

#include "app/FileRecord.h"
#include "audio/MusicTables.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>
#include <sys/stat.h>

namespace {

class MusicWriterTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = root() + QStringLiteral("/game");
        QDir().mkpath(game);
        source = writeFile(QStringLiteral("song.ogg"), QByteArray(40000, 'x') + "end");
    }
    QStringList written(const char* folder) const {
        return QDir(game + QStringLiteral("/data/sound/Ogg/") + QLatin1String(folder))
            .entryList(QDir::Files);
    }

    QString game;
    QString source;
    MusicBoxStates boxes;
};

TEST_F(MusicWriterTest, WritesTheTickedBoxesInTheGamesLetterCaseAndSkipsGrayedOnes) {
    boxes[QStringLiteral("sndVillainLogin")] = Qt::Checked;
    boxes[BoomBoxName(0)] = Qt::PartiallyChecked;
    EXPECT_TRUE(WriteMusicTargets(source, game, boxes));
    EXPECT_EQ(written("V_FrontEnd"), QStringList({"V_Music1_loop.ogg", "V_Music2_loop.ogg"}));
    EXPECT_TRUE(written("BoomBox").isEmpty());
    EXPECT_EQ(boxes[QStringLiteral("sndVillainLogin")], Qt::PartiallyChecked);
    EXPECT_EQ(boxes[BoomBoxName(0)], Qt::PartiallyChecked);
}

TEST_F(MusicWriterTest, ExistingFoldersInAnotherCaseAreReused) {
    QDir().mkpath(game + QStringLiteral("/Data/Sound/OGG/boombox"));
    boxes[BoomBoxName(3)] = Qt::Checked;
    WriteMusicTargets(source, game, boxes);
    EXPECT_TRUE(
        QFileInfo::exists(game + QStringLiteral("/Data/Sound/OGG/boombox/Track1_loop.ogg")));
    EXPECT_FALSE(QFileInfo::exists(game + QStringLiteral("/data")));
}

TEST_F(MusicWriterTest, NothingIsWrittenWithoutAGameFolder) {
    boxes[QStringLiteral("sndHeroLogin")] = Qt::Checked;
    for (const QString& folder : QStringList{QString(), root() + QStringLiteral("/no-game")}) {
        EXPECT_FALSE(WriteMusicTargets(source, folder, boxes));
        EXPECT_EQ(boxes[QStringLiteral("sndHeroLogin")], Qt::Checked);
    }
    EXPECT_FALSE(QFileInfo::exists(root() + QStringLiteral("/no-game")));
}

TEST_F(MusicWriterTest, CopyReplacesTheTargetWholeOrNotAtAll) {
    const QString target = writeFile(QStringLiteral("copy.ogg"), QByteArray(100000, 'o'));
    EXPECT_TRUE(CopySoundFile(source, target));
    EXPECT_FALSE(CopySoundFile(root() + QStringLiteral("/missing.ogg"), target));
    EXPECT_FALSE(CopySoundFile(root(), target)); // a folder is no source
    EXPECT_EQ(readFile(target), readFile(source));
    EXPECT_FALSE(CopySoundFile(source, root() + QStringLiteral("/no/such/folder/x.ogg")));
    // A FIFO is refused at once instead of waiting for a writer.
    const QString fifo = root() + QStringLiteral("/fifo.ogg");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    EXPECT_FALSE(CopySoundFile(fifo, target));
    EXPECT_EQ(readFile(target), readFile(source));
}

TEST_F(MusicWriterTest, AFullDiskKeepsTheGamesMusicAndTheBoxTicked) {
    const QString music = writeFile(
        QStringLiteral("game/data/sound/Ogg/H_FrontEnd/H_music1_loop.ogg"), "the game's own");
    boxes[QStringLiteral("sndHeroLogin")] = Qt::Checked;
    FailWritesAfter(1); // the second block of the copy finds the disk full
    EXPECT_TRUE(WriteMusicTargets(source, game, boxes));
    EXPECT_EQ(readFile(music), QByteArray("the game's own"));
    EXPECT_EQ(boxes[QStringLiteral("sndHeroLogin")], Qt::Checked);
    EXPECT_EQ(QDir(QFileInfo(music).path()).entryList(QDir::Files),
              QStringList{QStringLiteral("H_music1_loop.ogg")});
}

} // namespace
