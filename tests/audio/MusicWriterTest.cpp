#include "audio/MusicWriter.h"

#include "app/FileRecord.h"
#include "audio/MusicTables.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>

namespace {

class MusicWriterTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = makeGame();
        source = writeFile("song.ogg", QByteArray(40000, 'x') + "end");
    }
    QStringList written(const char* folder) const {
        return QDir(game + "/data/sound/Ogg/" + QLatin1String(folder)).entryList(QDir::Files);
    }

    QString game;
    QString source;
    MusicBoxStates boxes;
};

// Every BoomBox box has a track of its own; the login folders are made only
// when needed, the Pocket D folder always; folders in another letter case
// are reused; a grayed box was written already.
TEST_F(MusicWriterTest, WritesTheTickedBoxesInTheGamesLetterCaseAndSkipsGrayedOnes) {
    QDir().mkpath(game + "/Data/Sound/OGG/boombox");
    for (int i = 0; i < kBoomBoxCount; ++i)
        boxes[BoomBoxName(i)] = Qt::Checked;
    boxes["sndVillainLogin"] = Qt::Checked;
    boxes["sndHeroLogin"] = Qt::PartiallyChecked;
    EXPECT_TRUE(WriteMusicTargets(source, game, boxes));
    EXPECT_FALSE(QFileInfo::exists(game + "/data"));
    const QString ogg = game + "/Data/Sound/OGG/";
    QStringList tracks = QDir(ogg + "boombox").entryList(QDir::Files);
    for (int track = 1; track <= kBoomBoxCount; ++track)
        EXPECT_TRUE(tracks.removeOne(QStringLiteral("Track%1_loop.ogg").arg(track))) << track;
    EXPECT_TRUE(tracks.isEmpty());
    EXPECT_EQ(readFile(ogg + "boombox/Track1_loop.ogg"), readFile(source));
    EXPECT_EQ(QDir(ogg).entryList(QDir::Dirs | QDir::NoDotAndDotDot, QDir::Name | QDir::IgnoreCase),
              QStringList({"boombox", "Rave", "V_FrontEnd"}));
    EXPECT_EQ(QDir(ogg + "V_FrontEnd").entryList(QDir::Files),
              QStringList({"V_Music1_loop.ogg", "V_Music2_loop.ogg"}));
    EXPECT_TRUE(QDir(ogg + "Rave").isEmpty());
    EXPECT_EQ(boxes["sndVillainLogin"], Qt::PartiallyChecked);
    EXPECT_EQ(boxes[BoomBoxName(24)], Qt::PartiallyChecked);
}

TEST_F(MusicWriterTest, NothingIsWrittenWithoutAGameFolder) {
    boxes["sndHeroLogin"] = Qt::Checked;
    for (const QString& folder : QStringList{QString(), root() + "/no-game"}) {
        EXPECT_FALSE(WriteMusicTargets(source, folder, boxes));
        EXPECT_EQ(boxes["sndHeroLogin"], Qt::Checked);
    }
    EXPECT_FALSE(QFileInfo::exists(root() + "/no-game"));
}

TEST_F(MusicWriterTest, CopyReplacesTheTargetWholeOrNotAtAll) {
    const QString target = writeFile("copy.ogg", QByteArray(100000, 'o'));
    EXPECT_TRUE(CopySoundFile(source, target));
    EXPECT_FALSE(CopySoundFile(root() + "/missing.ogg", target));
    EXPECT_FALSE(CopySoundFile(root(), target)); // a folder is no source
    EXPECT_EQ(readFile(target), readFile(source));
    EXPECT_FALSE(CopySoundFile(source, root() + "/no/such/folder/x.ogg"));
    // A FIFO is refused at once instead of waiting for a writer.
    const QString fifo = root() + "/fifo.ogg";
    ASSERT_TRUE(makeFifo(fifo));
    EXPECT_FALSE(CopySoundFile(fifo, target));
    EXPECT_EQ(readFile(target), readFile(source));
}

} // namespace
