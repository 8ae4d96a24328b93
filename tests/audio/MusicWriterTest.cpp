#include "audio/MusicWriter.h"

#include "audio/MusicTables.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace {

class MusicWriterTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = root() + QStringLiteral("/game");
        QDir().mkpath(game);
        source = writeFile(QStringLiteral("song.ogg"), QByteArray(40000, 'x') + "end");
        for (const MusicTarget& target : MusicTargets())
            boxes.insert(target.box, Qt::Unchecked);
    }
    QString ogg(const QString& relative) const {
        return game + QStringLiteral("/data/sound/Ogg/") + relative;
    }
    bool exists(const QString& relative) const { return QFileInfo::exists(ogg(relative)); }

    QString game;
    QString source;
    MusicBoxStates boxes;
};

TEST(MusicTablesTest, BoomBoxCaptionsAndTracksAreTheGamesOwn) {
    const std::pair<const char*, int> expected[] = {
        {"Altitude", 9},       {"Beat", 11},        {"Catch Me", 13},   {"Dance", 1},
        {"ElectroVibe", 7},    {"Disco Freak", 16}, {"Dog Walk", 21},   {"Heavy Dude", 24},
        {"Info Overload", 18}, {"Looker", 8},       {"Kick It", 12},    {"Jumpy", 15},
        {"Meaty", 17},         {"Notorious", 20},   {"Move On", 4},     {"Peace", 22},
        {"Quickie", 5},        {"Raver", 3},        {"Wind It Up", 10}, {"Technoid", 2},
        {"Shuffle", 14},       {"Venus", 25},       {"Wah Wah", 19},    {"Yellow", 6},
        {"Spaz", 23}};
    for (int i = 0; i < kBoomBoxCount; ++i) {
        EXPECT_STREQ(kBoomBoxTracks[size_t(i)].caption, expected[i].first);
        EXPECT_EQ(kBoomBoxTracks[size_t(i)].track, expected[i].second);
        EXPECT_EQ(MusicTargets()[i].box, BoomBoxName(i));
    }
    EXPECT_EQ(MusicTargets().size(), kBoomBoxCount + 5);
}

TEST_F(MusicWriterTest, GroupsWriteTheirFilesInTheGamesLetterCase) {
    for (const char* box : {"sndVillainLogin", "sndDanceFloor", "sndBlueSide", "sndRedSide"})
        boxes[QString::fromLatin1(box)] = Qt::Checked;
    WriteMusicTargets(source, game, boxes);
    const QStringList villain = QDir(ogg(QStringLiteral("V_FrontEnd"))).entryList(QDir::Files);
    EXPECT_EQ(villain, QStringList({"V_Music1_loop.ogg", "V_Music2_loop.ogg"}));
    const QStringList rave = QDir(ogg(QStringLiteral("Rave"))).entryList(QDir::Files);
    EXPECT_EQ(rave, QStringList({"ExtendedRave_loop.ogg", "NewRave1_loop.ogg", "NewRave2_loop.ogg",
                                 "NewRave3_loop.ogg", "NewRave4_loop.ogg", "NewRave5_loop.ogg",
                                 "NewRave6_loop.ogg"}));
}

TEST_F(MusicWriterTest, GrayedBoxesAreNotWrittenAgain) {
    boxes[BoomBoxName(0)] = Qt::PartiallyChecked;
    WriteMusicTargets(source, game, boxes);
    EXPECT_FALSE(exists(QStringLiteral("BoomBox/Track9_loop.ogg")));
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
    EXPECT_TRUE(WriteMusicTargets(source, game, boxes));
}

TEST_F(MusicWriterTest, CopyReplacesTheTargetWholeOrNotAtAll) {
    const QString target = root() + QStringLiteral("/copy.ogg");
    writeFile(QStringLiteral("copy.ogg"), QByteArray(100000, 'o'));
    EXPECT_TRUE(CopySoundFile(source, target));
    EXPECT_EQ(readFile(target), readFile(source));
    EXPECT_FALSE(CopySoundFile(root() + QStringLiteral("/missing.ogg"), target));
    EXPECT_FALSE(CopySoundFile(root(), target)); // a folder is no source
    EXPECT_EQ(readFile(target), readFile(source));
    EXPECT_FALSE(CopySoundFile(source, root() + QStringLiteral("/no/such/folder/x.ogg")));
}

} // namespace
