#include "app/PathUtils.h"

#include "common/TestEnvironment.h"

#include <QDir>
#include <QFileInfo>

namespace {

TEST(ReturnPath, GivesTheFolderWithoutTrailingSlash) {
    EXPECT_EQ(ReturnPath("/home/p/CoH/cityofheroes.exe"), "/home/p/CoH");
    EXPECT_EQ(ReturnPath("games/coh/x.exe"), "games/coh");
    EXPECT_EQ(ReturnPath("cityofheroes.exe"), QString());
    // A file in the root never makes the root a game folder.
    EXPECT_EQ(ReturnPath("/cityofheroes.exe"), QString());
    EXPECT_EQ(ReturnPath(QString()), QString());
}

TEST(IsContainedRelative, RefusesNamesThatLeaveTheirFolder) {
    EXPECT_TRUE(IsContainedRelative("texture_library/GUI/Icons"));
    for (const char* bad :
         {"", "/etc", "\\\\server\\x", "C:\\x", "a/../../b", "..", "a/./b", "a\\..\\b"})
        EXPECT_FALSE(IsContainedRelative(QString::fromLatin1(bad))) << bad;
}

class MakePathTest : public TestEnvironment {};

TEST_F(MakePathTest, MakesWhatIsMissingReusingFoldersInAnotherLetterCase) {
    QDir().mkpath(root() + "/game/Data/Texture_Library");
    MakePath(root() + "/game/data/texture_library/GUI/CREATION/");
    MakePath(root() + "/game/data/texture_library/GUI/CREATION/"); // already there
    EXPECT_TRUE(QFileInfo(root() + "/game/Data/Texture_Library/GUI/CREATION").isDir());
    EXPECT_FALSE(QFileInfo::exists(root() + "/game/data"));
    EXPECT_EQ(ResolveExistingCase(root() + "/game/DATA/texture_library/GUI/x.texture"),
              root() + "/game/Data/Texture_Library/GUI/x.texture");
    // What cannot be made is not reported.
    writeFile("file", "x");
    MakePath(root() + "/file/below/a/file");
    EXPECT_FALSE(QFileInfo::exists(root() + "/file/below"));
}

} // namespace
