#include "randomizer/RunRandomizer.h"

#include "WineOnPath.h"
#include "app/StartUp.h"
#include "common/TestPictures.h"
#include "randomizer/RandomizerArguments.h"
#include "texture/ScreenTargets.h"

#include <QFileInfo>

namespace {

const QByteArray kLoginName =
    "texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.dds";

class RunRandomizerTest : public WineOnPath {
protected:
    void SetUp() override {
        WineOnPath::SetUp();
        game = root() + "/game";
        writeFile("game/paragonchat.exe", "MZ");
    }
    QString loginTexture() const { return ScreenTextureFile(game, kLoginScreen); }
    QString characterTexture() const { return ScreenTextureFile(game, kCharacterScreen); }

    QString game;
};

TEST_F(RunRandomizerTest, WritesBothScreensAndStartsTheClientWithTheArgumentsAsTyped) {
    const QByteArray loginEntry = QByteArray("DDS login").leftJustified(128, '.');
    const QByteArray characterEntry = QByteArray("DDS char").leftJustified(200, '.');
    writeFile("game/Kelvaris/RandomHL/Sunset.dds", loginEntry);
    writeFile("game/Kelvaris/RandomHC/city night.dds", characterEntry);
    // Given as a list, and as the text of a command line.
    const QStringList typed = {"-project", "", "say \"hi\"", "-randomizer", "C:\\x y", ""};
    RunRandomizer(game, typed, ui);
    RunRandomizer(game, JoinCommandLine(typed), ui);

    // A 32-byte header, the texture's name with its NUL, then the image.
    const QByteArray login = readFile(loginTexture());
    EXPECT_TRUE(login.endsWith(QByteArray(kLoginName + '\0' + loginEntry)));
    EXPECT_EQ(login.size(), 32 + kLoginName.size() + 1 + 128);
    EXPECT_TRUE(readFile(characterTexture()).endsWith(characterEntry));
    EXPECT_EQ(setting("RandomHL"), "Sunset.dds");
    EXPECT_EQ(setting("RandomHC"), "city night.dds");

    const QStringList expected = {
        game + "/paragonchat.exe", "-project", "", "say \"hi\"", "C:\\x y", ""};
    ASSERT_EQ(ui.starts.size(), 2);
    EXPECT_EQ(ui.starts[0].arguments, expected);
    EXPECT_EQ(ui.starts[1].arguments, expected);
    EXPECT_EQ(QDir::currentPath(), game);
}

TEST_F(RunRandomizerTest, EmptyMissingOrUnreadableLibrariesWriteNothingButStillStart) {
    // Login: no file that can be opened as an image (a folder named like one).
    writeFile("game/Kelvaris/RandomHL/notes.txt", "x");
    QDir().mkpath(game + "/Kelvaris/RandomHL/broken.dds");
    RunRandomizer(game, QStringList{"-randomizer"}, ui);
    EXPECT_TRUE(QDir(QFileInfo(loginTexture()).path()).exists()); // the folder is made
    EXPECT_FALSE(QFile::exists(loginTexture()));
    EXPECT_FALSE(QFile::exists(characterTexture())); // no library
    EXPECT_EQ(ui.starts.size(), 1);
}

TEST_F(RunRandomizerTest, NoGameFolderWritesNowhereAndSaysSo) {
    const QString before = QDir::currentPath();
    RunRandomizer(QString(), QStringList{"-randomizer"}, ui);
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text, "Unable to locate Paragon Chat in this folder.\r\n");
    EXPECT_EQ(QDir::currentPath(), before);
}

// Each switch's first appearance is cut, inside a longer argument too; blanks,
// quotes and empty arguments reach the client as given.
TEST(PassThrough, CutsTheFirstOfEachSwitchAndKeepsTheRestExactly) {
    const QStringList cases[][2] = {
        {{"-randomizer", "-x", "1"}, {"-x", "1"}},
        {{"-a", "-randomizer", "-b"}, {"-a", "-b"}},
        {{"-randomizer", "-skipupdate", "-x"}, {"-x"}},
        {{"-randomizer", "-randomizer"}, {"-randomizer"}},
        {{"-Randomizer", "-x"}, {"-Randomizer", "-x"}},
        {{"--x=-randomizer-y", "-skipupdateZ"}, {"--x=-y", "Z"}},
        {{"-randomizer", "-project", "City of Heroes", "", "say \"hi\"", ""},
         {"-project", "City of Heroes", "", "say \"hi\"", ""}}};
    for (const auto& [arguments, passedOn] : cases)
        EXPECT_EQ(PassThroughArguments(arguments), passedOn) << arguments.join(u' ').toStdString();
}

} // namespace
