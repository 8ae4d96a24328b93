#include "randomizer/ChatClientLauncher.h"

#include "WineOnPath.h"
#include "app/CommandQuoting.h"
#include "common/CaseName.h"
#include "common/LauncherFixtures.h"

namespace {

using namespace LauncherFixtures;

// Arguments a naive join and split would lose or merge.
const QStringList kArguments = {"-x", "", "say \"hi\"", "two words", ""};

// A game of one launcher, the program the client is started with and the
// prefix it is given. Paths are relative to the test's temporary folder,
// whose "bin" alone is on PATH and holds a stand-in "wine".
struct LaunchCase {
    std::string name;
    const char* game; // the game folder, holding paragonchat.exe
    void (*lay)(const QString& root);
    const char* program;
    const char* prefix; // "" when WINEPREFIX is not set
    const char* bottle; // "" unless started through bottles-cli
};

const LaunchCase kLaunches[] = {
    {"plain prefix with the Wine on PATH", "wine/drive_c/Games/CoH",
     [](const QString& root) { MakePrefix(root, QStringLiteral("wine")); }, "bin/wine", "wine", ""},
    {"Lutris runner", "home/Games/coh/drive_c/CoH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         MakeProgram(root, QStringLiteral("home/.local/share/lutris/runners/wine/ge-8/bin/wine"));
         WriteAt(root, QStringLiteral("home/.config/lutris/games/coh.yml"),
                 "game:\n  prefix: ~/Games/coh\nwine:\n  version: ge-8\n");
     },
     "home/.local/share/lutris/runners/wine/ge-8/bin/wine", "home/Games/coh", ""},
    {"bottle's runner", "home/.local/share/bottles/bottles/C/drive_c/CoH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.local/share/bottles/bottles/C"));
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/C/bottle.yml"),
                 "Runner: caffe-9\n");
         MakeProgram(root, QStringLiteral("home/.local/share/bottles/runners/caffe-9/bin/wine"));
     },
     "home/.local/share/bottles/runners/caffe-9/bin/wine", "home/.local/share/bottles/bottles/C",
     ""},
    {"bottle through bottles-cli", "home/.local/share/bottles/bottles/C/drive_c/CoH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.local/share/bottles/bottles/C"));
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/C/bottle.yml"),
                 "Name: City\nRunner: caffe-9\n");
         MakeProgram(root, QStringLiteral("bin/bottles-cli"));
     },
     "bin/bottles-cli", "", "City"},
    {"Flatpak bottle", "home/.var/app/com.usebottles.bottles/data/bottles/bottles/F/drive_c/CoH",
     [](const QString& root) {
         MakePrefix(root,
                    QStringLiteral("home/.var/app/com.usebottles.bottles/data/bottles/bottles/F"));
         WriteAt(root,
                 QStringLiteral(
                     "home/.var/app/com.usebottles.bottles/data/bottles/bottles/F/bottle.yml"),
                 "Name: F\n");
         MakeProgram(root, QStringLiteral("bin/flatpak"));
     },
     "bin/flatpak", "", "F"},
    {"Steam Proton", "home/.steam/steam/steamapps/compatdata/1/pfx/drive_c/CoH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.steam/steam/steamapps/compatdata/1/pfx"));
         WriteAt(root, QStringLiteral("home/.steam/steam/steamapps/compatdata/1/config_info"),
                 "proton-9\n" + root.toUtf8() + "/proton9/files/lib/wine/\n");
         MakeProgram(root, QStringLiteral("proton9/files/bin/wine"));
     },
     "proton9/files/bin/wine", "home/.steam/steam/steamapps/compatdata/1/pfx", ""},
    {"folder reached through a link", "link/CoH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/Heroic/Prefixes/H"));
         QDir().mkpath(root + QStringLiteral("/home/Games/Heroic/Prefixes/H/drive_c/Games"));
         QFile::link(root + QStringLiteral("/home/Games/Heroic/Prefixes/H/drive_c/Games"),
                     root + QStringLiteral("/link"));
         MakeProgram(root, QStringLiteral("heroic-wine/bin/wine"));
         WriteAt(
             root, QStringLiteral("home/.config/heroic/GamesConfig/H.json"),
             "{\"H\":{\"winePrefix\":\"~/Games/Heroic/Prefixes/H\",\"wineVersion\":{\"bin\":\"" +
                 root.toUtf8() + "/heroic-wine/bin/wine\"}}}");
     },
     "heroic-wine/bin/wine", "home/Games/Heroic/Prefixes/H", ""},
};

class ChatClientStart : public WineOnPath, public ::testing::WithParamInterface<LaunchCase> {};

TEST_P(ChatClientStart, UsesTheInstallationsWineInTheGameFolder) {
    const LaunchCase& c = GetParam();
    c.lay(root());
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

TEST_F(ChatClientTest, MissingClientIsToldWithTheFolder) {
    const QString game = root() + QStringLiteral("/game");
    QDir().mkpath(game);
    EXPECT_FALSE(LaunchChatClient(game, {}, ui));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n") + game);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(ui.starts.isEmpty());
}

TEST_F(ChatClientTest, MissingRunnerNamesWhatToInstall) {
    writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    writeFile(QStringLiteral("home/.local/share/bottles/bottles/B/drive_c/CoH/paragonchat.exe"),
              "MZ");
    MakePrefix(root(), QStringLiteral("home/.local/share/bottles/bottles/B"));
    writeFile(QStringLiteral("home/.local/share/bottles/bottles/B/bottle.yml"), "Runner: gone\n");
    const QString flatpak =
        QStringLiteral("home/.var/app/com.usebottles.bottles/data/bottles/bottles/F");
    MakePrefix(root(), flatpak);
    writeFile(flatpak + QStringLiteral("/bottle.yml"), "Name: F\n");
    writeFile(flatpak + QStringLiteral("/drive_c/CoH/paragonchat.exe"), "MZ");
    qputenv("PATH", (root() + QStringLiteral("/nothing-here")).toUtf8());

    EXPECT_FALSE(LaunchChatClient(root() + QStringLiteral("/game"), {}, ui));
    EXPECT_FALSE(LaunchChatClient(
        root() + QStringLiteral("/home/.local/share/bottles/bottles/B/drive_c/CoH"), {}, ui));
    EXPECT_FALSE(
        LaunchChatClient(root() + u'/' + flatpak + QStringLiteral("/drive_c/CoH"), {}, ui));
    EXPECT_EQ(ui.messageTexts(),
              QStringList({"Wine was not found. Install the \"wine\" package (or start the game "
                           "from its launcher once) and try again.",
                           "Bottles was not found. Install Bottles (its \"bottles-cli\" command) "
                           "and try again.",
                           "Flatpak was not found. Install the \"flatpak\" package and try "
                           "again."}));
    EXPECT_TRUE(ui.starts.isEmpty());
}

} // namespace
