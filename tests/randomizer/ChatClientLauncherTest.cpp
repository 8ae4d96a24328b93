#include "randomizer/ChatClientLauncher.h"

#include "WineOnPath.h"
#include "app/CommandQuoting.h"
#include "common/CaseName.h"
#include "common/LauncherFixtures.h"

namespace {

using namespace LauncherFixtures;

// Arguments a naive join and split would lose or merge.
const QStringList kArguments = {"-x", "", "say \"hi\"", "two words", ""};

// One kind of start: the game folder, the program the client is started with
// and its prefix, relative to the test's folder, whose "bin" alone is on PATH.
struct LaunchCase {
    std::string name;
    const char* game; // the game folder, holding paragonchat.exe
    Layout layout;
    const char* program;
    const char* prefix; // "" when WINEPREFIX is not set
    const char* bottle; // "" unless started through bottles-cli
};

const char* const kFlatpakBottle = "home/.var/app/com.usebottles.bottles/data/bottles/bottles/F";

const LaunchCase kLaunches[] = {
    {"plain prefix with the Wine on PATH",
     "wine/drive_c/Games/CoH",
     {{Prefix, "wine"}},
     "bin/wine",
     "wine",
     ""},
    {"bottle through bottles-cli",
     "home/.local/share/bottles/bottles/C/drive_c/CoH",
     {{Prefix, "home/.local/share/bottles/bottles/C"},
      {File, "home/.local/share/bottles/bottles/C/bottle.yml", "Name: City\nRunner: caffe-9\n"},
      {Program, "bin/bottles-cli"}},
     "bin/bottles-cli",
     "",
     "City"},
    {"Flatpak bottle",
     "home/.var/app/com.usebottles.bottles/data/bottles/bottles/F/drive_c/CoH",
     {{Prefix, kFlatpakBottle},
      {File, kFlatpakBottle + QStringLiteral("/bottle.yml"), "Name: F\n"},
      {Program, "bin/flatpak"}},
     "bin/flatpak",
     "",
     "F"},
};

class ChatClientStart : public WineOnPath, public ::testing::WithParamInterface<LaunchCase> {};

TEST_P(ChatClientStart, UsesTheInstallationsWineInTheGameFolder) {
    const LaunchCase& c = GetParam();
    Lay(root(), c.layout);
    const QString game = root() + u'/' + QString::fromLatin1(c.game);
    writeFile(QString::fromLatin1(c.game) + QStringLiteral("/ParagonChat.exe"), "MZ");
    const QString client = game + QStringLiteral("/ParagonChat.exe");

    ASSERT_TRUE(LaunchChatClient(game, kArguments, ui));
    EXPECT_TRUE(ui.messages.isEmpty());
    ASSERT_EQ(ui.starts.size(), 1);
    const ProgramStart& start = ui.starts[0];
    EXPECT_EQ(start.program, root() + u'/' + QString::fromLatin1(c.program));
    EXPECT_EQ(start.workingFolder, game);
    if (*c.bottle) {
        QStringList expected =
            QString::fromLatin1(c.program).endsWith(u"flatpak")
                ? QStringList{"run", "--command=bottles-cli", "com.usebottles.bottles"}
                : QStringList{};
        expected << "run"
                 << "-b" << QString::fromLatin1(c.bottle) << "-e" << client << "--args"
                 << ShellQuoted(kArguments);
        EXPECT_EQ(start.arguments, expected);
    } else {
        EXPECT_EQ(start.arguments, QStringList{client} + kArguments);
    }
    const QString prefix = QString::fromLatin1(c.prefix);
    EXPECT_EQ(start.environment.value(QStringLiteral("WINEPREFIX")),
              prefix.isEmpty() ? QString() : root() + u'/' + prefix);
}

INSTANTIATE_TEST_SUITE_P(Launchers, ChatClientStart, ::testing::ValuesIn(kLaunches),
                         CaseName<LaunchCase>);

class ChatClientTest : public WineOnPath {
protected:
    void SetUp() override {
        WineOnPath::SetUp();
        qunsetenv("WINEPREFIX"); // the start must not lean on it
    }
};

TEST_F(ChatClientTest, AMissingClientOrRunnerIsToldAndNothingStarts) {
    Lay(root(), {{Folder, "game"},
                 {File, "wine-game/paragonchat.exe", "MZ"},
                 {Prefix, "home/.local/share/bottles/bottles/B"},
                 {File, "home/.local/share/bottles/bottles/B/bottle.yml", "Runner: gone\n"},
                 {File, "home/.local/share/bottles/bottles/B/drive_c/CoH/paragonchat.exe", "MZ"},
                 {Prefix, kFlatpakBottle},
                 {File, kFlatpakBottle + QStringLiteral("/bottle.yml"), "Name: F\n"},
                 {File, kFlatpakBottle + QStringLiteral("/drive_c/CoH/paragonchat.exe"), "MZ"}});
    EXPECT_FALSE(LaunchChatClient(root() + "/game", {}, ui));
    qputenv("PATH", (root() + "/nothing-here").toUtf8());
    EXPECT_FALSE(LaunchChatClient(root() + "/wine-game", {}, ui));
    EXPECT_FALSE(
        LaunchChatClient(root() + "/home/.local/share/bottles/bottles/B/drive_c/CoH", {}, ui));
    EXPECT_FALSE(LaunchChatClient(root() + u'/' + kFlatpakBottle + "/drive_c/CoH", {}, ui));
    EXPECT_EQ(ui.messageTexts(),
              QStringList({"Unable to locate Paragon Chat in this folder.\r\n" + root() + "/game",
                           "Wine was not found. Install the \"wine\" package (or start the game "
                           "from its launcher once) and try again.",
                           "Bottles was not found. Install Bottles (its \"bottles-cli\" command) "
                           "and try again.",
                           "Flatpak was not found. Install the \"flatpak\" package and try "
                           "again."}));
    EXPECT_EQ(ui.messages.value(0).icon, MsgIcon::Critical);
    EXPECT_TRUE(ui.starts.isEmpty());
}

} // namespace
