#include "app/PathUtils.h"

#include "common/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>

namespace {

TEST(ReturnPath, GivesTheFolderWithoutTrailingSlash) {
    EXPECT_EQ(ReturnPath(QStringLiteral("/home/p/CoH/cityofheroes.exe")),
              QStringLiteral("/home/p/CoH"));
    EXPECT_EQ(ReturnPath(QStringLiteral("games/coh/x.exe")), QStringLiteral("games/coh"));
    EXPECT_EQ(ReturnPath(QStringLiteral("cityofheroes.exe")), QString());
    // A file in the root never makes the root a game folder.
    EXPECT_EQ(ReturnPath(QStringLiteral("/cityofheroes.exe")), QString());
    EXPECT_EQ(ReturnPath(QString()), QString());
}

TEST(IsContainedRelative, RefusesNamesThatLeaveTheirFolder) {
    EXPECT_TRUE(IsContainedRelative(QStringLiteral("texture_library/GUI/Icons")));
    for (const char* bad :
         {"", "/etc", "\\\\server\\x", "C:\\x", "a/../../b", "..", "a/./b", "a\\..\\b"})
        EXPECT_FALSE(IsContainedRelative(QString::fromLatin1(bad))) << bad;
}

class MakePathTest : public TestEnvironment {};

TEST_F(MakePathTest, CreatesEveryMissingFolderOnce) {
    const QString target = root() + QStringLiteral("/game/data/sound/Ogg/BoomBox/");
    MakePath(target);
    EXPECT_TRUE(QFileInfo(target).isDir());
    MakePath(target); // already there: nothing happens
    EXPECT_TRUE(QFileInfo(target).isDir());
}

TEST_F(MakePathTest, ReusesFoldersThatDifferOnlyInLetterCase) {
    QDir().mkpath(root() + QStringLiteral("/game/Data/Texture_Library"));
    MakePath(root() + QStringLiteral("/game/data/texture_library/GUI/CREATION"));
    EXPECT_TRUE(
        QFileInfo(root() + QStringLiteral("/game/Data/Texture_Library/GUI/CREATION")).isDir());
    EXPECT_FALSE(QFileInfo::exists(root() + QStringLiteral("/game/data")));
    EXPECT_EQ(
        ResolveExistingCase(root() + QStringLiteral("/game/DATA/texture_library/GUI/x.texture")),
        root() + QStringLiteral("/game/Data/Texture_Library/GUI/x.texture"));
}

TEST_F(MakePathTest, ErrorsAreNotReported) {
    writeFile(QStringLiteral("file"), "x");
    MakePath(root() + QStringLiteral("/file/below/a/file")); // cannot be made; no crash
    EXPECT_FALSE(QFileInfo::exists(root() + QStringLiteral("/file/below")));
}

} // namespace
