#include "app/GameInstallations.h"

#include "common/CaseName.h"
#include "common/LauncherFixtures.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <sys/stat.h>

namespace {

using namespace LauncherFixtures;

// One launcher's layout in the home folder and the installation it gives.
// Expected paths are relative to the test's temporary folder, whose "home"
// is $HOME; a runner program without "/" is a name looked up on PATH.
struct LayoutCase {
    std::string name;
    void (*lay)(const QString& root);
    const char* launcher;
    const char* prefix;
    const char* gameFolder;
    const char* program;
    const char* bottle = ""; // set for a runner through bottles-cli
    int screenX = 0;
    int screenY = 0;
};

void lutrisGame(const QString& root, const char* file, const QByteArray& yml) {
    WriteAt(root, QString::fromLatin1(file), QByteArray(yml).replace("ROOT", root.toUtf8()));
}

const LayoutCase kLayouts[] = {
    {"WINEPREFIX, folder from user.reg in another letter case",
     [](const QString& root) {
         qputenv("WINEPREFIX", (root + QStringLiteral("/home/prefixes/coh")).toUtf8());
         MakePrefix(root, QStringLiteral("home/prefixes/coh"),
                    GameRegistry(QStringLiteral("C:\\GAMES\\city of heroes"), 1920, 1080));
         QDir().mkpath(root + QStringLiteral("/home/prefixes/coh/drive_c/Games/City of Heroes"));
     },
     "Wine", "home/prefixes/coh", "home/prefixes/coh/drive_c/Games/City of Heroes", "wine", "",
     1920, 1080},
    {"~/.wine, game found below drive_c in any letter case",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.wine"));
         WriteAt(root, QStringLiteral("home/.wine/drive_c/Program Files/CoH/CityOfHeroes.EXE"),
                 "MZ");
     },
     "Wine", "home/.wine", "home/.wine/drive_c/Program Files/CoH", "wine"},
    {"Lutris with its own Wine runner",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         WriteAt(root, QStringLiteral("home/Games/coh/drive_c/CoH/paragonchat.exe"), "MZ");
         MakeProgram(root, QStringLiteral(
                               "home/.local/share/lutris/runners/wine/lutris-7.2-x86_64/bin/wine"));
         lutrisGame(root, "home/.config/lutris/games/city-of-heroes-1700000000.yml",
                    "game:\n  exe: ROOT/home/Games/coh/drive_c/CoH/paragonchat.exe\n"
                    "  prefix: ROOT/home/Games/coh  # the game's prefix\n"
                    "name: City of Heroes\nrunner: wine\n"
                    "system:\n  env:\n    version: not-this\n"
                    "wine:\n  dxvk: true\n  version: 'lutris-7.2-x86_64'\n");
     },
     "Lutris", "home/Games/coh", "home/Games/coh/drive_c/CoH",
     "home/.local/share/lutris/runners/wine/lutris-7.2-x86_64/bin/wine"},
    {"Lutris in the data folder, ~ prefix, runner not installed",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh2"));
         WriteAt(root, QStringLiteral("home/Games/coh2/drive_c/coh/cityofheroes.exe"), "MZ");
         lutrisGame(root, "home/.local/share/lutris/games/coh.yml",
                    "game:\n    exe: drive_c/coh/cityofheroes.exe\n    prefix: \"~/Games/coh2\"\n"
                    "wine:\n    version: lutris-gone\n");
     },
     "Lutris", "home/Games/coh2", "home/Games/coh2/drive_c/coh", "wine"},
    {"Bottles with its runner",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.local/share/bottles/bottles/CoH"));
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/CoH/bottle.yml"),
                 "Arch: win64\nName: City of Heroes\nRunner: caffe-7.20\nPath: CoH\n");
         WriteAt(root,
                 QStringLiteral("home/.local/share/bottles/bottles/CoH/drive_c/Games/CoH/"
                                "cityofheroes.exe"),
                 "MZ");
         MakeProgram(root, QStringLiteral("home/.local/share/bottles/runners/caffe-7.20/bin/wine"));
     },
     "Bottles", "home/.local/share/bottles/bottles/CoH",
     "home/.local/share/bottles/bottles/CoH/drive_c/Games/CoH",
     "home/.local/share/bottles/runners/caffe-7.20/bin/wine"},
    {"Bottles without its runner goes through bottles-cli",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.local/share/bottles/bottles/Heroes"),
                    GameRegistry(QStringLiteral("C:\\CoH")));
         QDir().mkpath(root +
                       QStringLiteral("/home/.local/share/bottles/bottles/Heroes/drive_c/CoH"));
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/Heroes/bottle.yml"),
                 "Runner: soda-9.0\n");
     },
     "Bottles", "home/.local/share/bottles/bottles/Heroes",
     "home/.local/share/bottles/bottles/Heroes/drive_c/CoH", "bottles-cli", "Heroes"},
    {"Bottles Flatpak",
     [](const QString& root) {
         const QString bottle =
             QStringLiteral("home/.var/app/com.usebottles.bottles/data/bottles/bottles/Game");
         MakePrefix(root, bottle);
         WriteAt(root, bottle + QStringLiteral("/bottle.yml"), "Name: \"Paragon\"\nRunner: x\n");
         WriteAt(root, bottle + QStringLiteral("/drive_c/PC/ParagonChat.exe"), "MZ");
     },
     "Bottles (Flatpak)", "home/.var/app/com.usebottles.bottles/data/bottles/bottles/Game",
     "home/.var/app/com.usebottles.bottles/data/bottles/bottles/Game/drive_c/PC", "flatpak",
     "Paragon"},
    {"Steam, Proton named by config_info",
     [](const QString& root) {
         const QString steam = QStringLiteral("home/.local/share/Steam/steamapps/");
         MakePrefix(root, steam + QStringLiteral("compatdata/9000/pfx"));
         WriteAt(root, steam + QStringLiteral("compatdata/9000/pfx/drive_c/CoH/cityofheroes.exe"),
                 "MZ");
         WriteAt(root, steam + QStringLiteral("compatdata/9000/config_info"),
                 "proton-8.0-3\n" + root.toUtf8() +
                     "/home/.local/share/Steam/steamapps/common/"
                     "Proton 8.0/files/share/fonts/\n");
         MakeProgram(root, steam + QStringLiteral("common/Proton 8.0/files/bin/wine"));
     },
     "Steam", "home/.local/share/Steam/steamapps/compatdata/9000/pfx",
     "home/.local/share/Steam/steamapps/compatdata/9000/pfx/drive_c/CoH",
     "home/.local/share/Steam/steamapps/common/Proton 8.0/files/bin/wine"},
    {"Steam library from libraryfolders.vdf, Proton named by version",
     [](const QString& root) {
         QDir().mkpath(root + QStringLiteral("/home/.steam/steam/steamapps"));
         WriteAt(root, QStringLiteral("home/.steam/steam/steamapps/libraryfolders.vdf"),
                 "\"libraryfolders\"\n{\n\t\"0\"\n\t{\n\t\t\"path\"\t\t\"" + root.toUtf8() +
                     "/home/.steam/steam\"\n\t}\n\t\"1\"\n\t{\n\t\t\"path\"\t\t\"" + root.toUtf8() +
                     "/disk/Steam Library\"\n\t\t\"label\"\t\t\"\"\n\t}\n}\n");
         MakePrefix(root, QStringLiteral("disk/Steam Library/steamapps/compatdata/7/pfx"));
         WriteAt(root,
                 QStringLiteral("disk/Steam Library/steamapps/compatdata/7/pfx/drive_c/a/b/c/d/"
                                "cityofvillains.exe"),
                 "MZ");
         WriteAt(root, QStringLiteral("disk/Steam Library/steamapps/compatdata/7/version"),
                 "GE-Proton8-25\n");
         MakeProgram(
             root,
             QStringLiteral("home/.steam/steam/compatibilitytools.d/GE-Proton8-25/dist/bin/wine"));
     },
     "Steam", "disk/Steam Library/steamapps/compatdata/7/pfx",
     "disk/Steam Library/steamapps/compatdata/7/pfx/drive_c/a/b/c/d",
     "home/.steam/steam/compatibilitytools.d/GE-Proton8-25/dist/bin/wine"},
    {"Steam without Proton files uses the Wine on PATH",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.steam/steam/steamapps/compatdata/5/pfx"));
         WriteAt(root,
                 QStringLiteral("home/.steam/steam/steamapps/compatdata/5/pfx/drive_c/x/"
                                "cityofheroes.exe"),
                 "MZ");
     },
     "Steam", "home/.steam/steam/steamapps/compatdata/5/pfx",
     "home/.steam/steam/steamapps/compatdata/5/pfx/drive_c/x", "wine"},
    {"Heroic with the game's Wine from GamesConfig",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/Heroic/Prefixes/CoH"),
                    GameRegistry(QStringLiteral("C:\\Games\\CoH"), 1024, 768));
         QDir().mkpath(root + QStringLiteral("/home/Games/Heroic/Prefixes/CoH/drive_c/Games/CoH"));
         MakeProgram(root, QStringLiteral("home/.config/heroic/tools/wine/Wine-GE/bin/wine"));
         WriteAt(root, QStringLiteral("home/.config/heroic/GamesConfig/other.json"),
                 "{\"other\": {\"winePrefix\": \"/elsewhere\", \"wineVersion\": {\"bin\": "
                 "\"/usr/bin/true\"}}}");
         WriteAt(root, QStringLiteral("home/.config/heroic/GamesConfig/abc123.json"),
                 "{\"abc123\": {\"winePrefix\": \"" + root.toUtf8() +
                     "/home/Games/Heroic/Prefixes/CoH\", \"wineVersion\": {\"bin\": \"" +
                     root.toUtf8() +
                     "/home/.config/heroic/tools/wine/Wine-GE/bin/wine\", \"type\": \"wine\"}}}");
     },
     "Heroic", "home/Games/Heroic/Prefixes/CoH", "home/Games/Heroic/Prefixes/CoH/drive_c/Games/CoH",
     "home/.config/heroic/tools/wine/Wine-GE/bin/wine", "", 1024, 768},
    {"Heroic one level down, broken GamesConfig",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/Heroic/Prefixes/default/CoH"));
         WriteAt(root,
                 QStringLiteral("home/Games/Heroic/Prefixes/default/CoH/drive_c/CoH/"
                                "paragonchat.exe"),
                 "MZ");
         WriteAt(root, QStringLiteral("home/.config/heroic/GamesConfig/CoH.json"),
                 "{\"CoH\": {\"winePrefix\": \"");
     },
     "Heroic", "home/Games/Heroic/Prefixes/default/CoH",
     "home/Games/Heroic/Prefixes/default/CoH/drive_c/CoH", "wine"},
};

class LauncherLayout : public TestEnvironment, public ::testing::WithParamInterface<LayoutCase> {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        qunsetenv("WINEPREFIX"); // only where a case sets it
    }
    QString at(const char* relative) const { return root() + u'/' + QString::fromLatin1(relative); }
};

TEST_P(LauncherLayout, GivesTheInstallationWithItsRunner) {
    const LayoutCase& c = GetParam();
    c.lay(root());
    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 1);
    const GameInstallation& game = found[0];
    EXPECT_EQ(game.launcher, QString::fromLatin1(c.launcher));
    EXPECT_EQ(game.prefix, at(c.prefix));
    EXPECT_EQ(game.gameFolder, at(c.gameFolder));
    const QString program = QString::fromLatin1(c.program);
    EXPECT_EQ(game.runner.program, program.contains(u'/') ? at(c.program) : program);
    if (*c.bottle) {
        EXPECT_EQ(game.runner.kind, GameRunner::Kind::Bottles);
        EXPECT_EQ(game.runner.bottle, QString::fromLatin1(c.bottle));
        EXPECT_EQ(game.runner.programArguments,
                  program == u"flatpak"
                      ? QStringList({"run", "--command=bottles-cli", "com.usebottles.bottles"})
                      : QStringList());
    } else {
        EXPECT_EQ(game.runner.kind, GameRunner::Kind::Wine);
    }
    if (c.screenX > 0)
        EXPECT_EQ(game.screen, QSize(c.screenX, c.screenY));
    else
        EXPECT_FALSE(game.screen.has_value());
    // Every launcher's prefix is also found from its game folder.
    QString prefix;
    EXPECT_EQ(RunnerForGameFolder(game.gameFolder, &prefix), game.runner);
    EXPECT_EQ(prefix, game.prefix);
}

INSTANTIATE_TEST_SUITE_P(Launchers, LauncherLayout, ::testing::ValuesIn(kLayouts),
                         CaseName<LayoutCase>);

// Launcher files that are broken, odd or hostile: each gives no installation,
// and none of them holds up the scan.
struct BrokenCase {
    std::string name;
    void (*lay)(const QString& root);
};

const BrokenCase kBroken[] = {
    {"Lutris file of binary noise",
     [](const QString& root) {
         WriteAt(root, QStringLiteral("home/.config/lutris/games/noise.yml"),
                 QByteArray("\x00\xff\x7fgame:\x00\n  prefix\x01: /", 20).repeated(500));
     }},
    {"Lutris prefix in an unclosed quote",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         WriteAt(root, QStringLiteral("home/Games/coh/drive_c/cityofheroes.exe"), "MZ");
         WriteAt(root, QStringLiteral("home/.config/lutris/games/coh.yml"),
                 "game:\n  prefix: \"" + root.toUtf8() + "/home/Games/coh\n");
     }},
    {"Lutris prefix only nested deeper, or in a block scalar",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         WriteAt(root, QStringLiteral("home/Games/coh/drive_c/cityofheroes.exe"), "MZ");
         WriteAt(root, QStringLiteral("home/.config/lutris/games/a.yml"),
                 "game:\n  options:\n    prefix: " + root.toUtf8() + "/home/Games/coh\n");
         WriteAt(root, QStringLiteral("home/.config/lutris/games/b.yml"),
                 "game:\n  prefix: |\n    " + root.toUtf8() + "/home/Games/coh\n");
     }},
    {"Lutris game of another runner",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         WriteAt(root, QStringLiteral("home/Games/coh/drive_c/cityofheroes.exe"), "MZ");
         WriteAt(root, QStringLiteral("home/.config/lutris/games/coh.yml"),
                 "game:\n  prefix: " + root.toUtf8() + "/home/Games/coh\nrunner: linux\n");
     }},
    {"Lutris file larger than a launcher file can be",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/Games/coh"));
         WriteAt(root, QStringLiteral("home/Games/coh/drive_c/cityofheroes.exe"), "MZ");
         WriteAt(root, QStringLiteral("home/.config/lutris/games/coh.yml"),
                 "game:\n  prefix: " + root.toUtf8() + "/home/Games/coh\n" +
                     QByteArray(2 * 1024 * 1024, '#'));
     }},
    {"Lutris file that is a FIFO, and one that is a folder",
     [](const QString& root) {
         QDir().mkpath(root + QStringLiteral("/home/.config/lutris/games/folder.yml"));
         ::mkfifo(QFile::encodeName(root + QStringLiteral("/home/.config/lutris/games/fifo.yml"))
                      .constData(),
                  0600);
     }},
    {"bottle without drive_c, and bottle.yml that is a folder",
     [](const QString& root) {
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/A/bottle.yml"),
                 "Name: A\n");
         WriteAt(root, QStringLiteral("home/.local/share/bottles/bottles/A/cityofheroes.exe"),
                 "MZ");
         MakePrefix(root, QStringLiteral("home/.local/share/bottles/bottles/B"));
         QDir().mkpath(root + QStringLiteral("/home/.local/share/bottles/bottles/B/bottle.yml"));
         WriteAt(root,
                 QStringLiteral("home/.local/share/bottles/bottles/B/drive_c/cityofheroes.exe"),
                 "MZ");
     }},
    {"libraryfolders.vdf cut short, compatdata without pfx",
     [](const QString& root) {
         WriteAt(root, QStringLiteral("home/.steam/steam/steamapps/libraryfolders.vdf"),
                 "\"libraryfolders\" { \"0\" { \"path\" \"" + root.toUtf8() + "/disk");
         MakePrefix(root, QStringLiteral("disk/steamapps/compatdata/1/pfx"));
         WriteAt(root, QStringLiteral("disk/steamapps/compatdata/1/pfx/drive_c/cityofheroes.exe"),
                 "MZ");
         WriteAt(root, QStringLiteral("home/.steam/steam/steamapps/compatdata/2/drive_c/x.exe"),
                 "");
     }},
    {"prefix whose user.reg is noise and whose game lies too deep",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.wine"), QByteArray("[\\\\\\\n\"=\"\x00[", 10));
         WriteAt(root, QStringLiteral("home/.wine/drive_c/1/2/3/4/5/cityofheroes.exe"), "MZ");
     }},
    {"game programs that are a FIFO, a folder and a link out of the prefix",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.wine"));
         ::mkfifo(QFile::encodeName(root + QStringLiteral("/home/.wine/drive_c/cityofheroes.exe"))
                      .constData(),
                  0600);
         QDir().mkpath(root + QStringLiteral("/home/.wine/drive_c/a/paragonchat.exe"));
         WriteAt(root, QStringLiteral("outside/CoH/cityofheroes.exe"), "MZ");
         QFile::link(root + QStringLiteral("/outside"),
                     root + QStringLiteral("/home/.wine/drive_c/users"));
         // A loop inside the prefix is walked once.
         QFile::link(root + QStringLiteral("/home/.wine/drive_c"),
                     root + QStringLiteral("/home/.wine/drive_c/a/loop"));
     }},
    {"drive_c/windows is never searched",
     [](const QString& root) {
         MakePrefix(root, QStringLiteral("home/.wine"));
         WriteAt(root, QStringLiteral("home/.wine/drive_c/windows/cityofheroes.exe"), "MZ");
     }},
};

class BrokenLauncherFiles : public TestEnvironment,
                            public ::testing::WithParamInterface<BrokenCase> {};

TEST_P(BrokenLauncherFiles, GiveNoInstallation) {
    GetParam().lay(root());
    EXPECT_TRUE(FindGameInstallations().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Files, BrokenLauncherFiles, ::testing::ValuesIn(kBroken),
                         CaseName<BrokenCase>);

using GameInstallationsTest = TestEnvironment;

TEST_F(GameInstallationsTest, OneEntryPerRealGameFolderWithTheLaunchersWine) {
    // $WINEPREFIX and ~/.wine both lead to the Lutris prefix: Lutris's own
    // Wine is the one that runs it.
    const QString prefix = MakePrefix(root(), QStringLiteral("home/Games/coh"));
    WriteAt(root(), QStringLiteral("home/Games/coh/drive_c/CoH/cityofheroes.exe"), "MZ");
    const QString wine =
        MakeProgram(root(), QStringLiteral("home/.local/share/lutris/runners/wine/v1/bin/wine"));
    WriteAt(root(), QStringLiteral("home/.config/lutris/games/coh.yml"),
            "game:\n  prefix: " + prefix.toUtf8() + "\nwine:\n  version: v1\n");
    qputenv("WINEPREFIX", prefix.toUtf8());
    QFile::link(prefix, root() + QStringLiteral("/home/.wine"));
    // A second prefix whose registry names the same game folder.
    MakePrefix(root(), QStringLiteral("home/Games/other"),
               GameRegistry(QStringLiteral("Z:") + root() +
                            QStringLiteral("/home/Games/coh/drive_c/CoH")));
    QFile::link(QStringLiteral("/"), root() + QStringLiteral("/home/Games/other/dosdevices/z:"));
    WriteAt(root(), QStringLiteral("home/.config/lutris/games/other.yml"),
            "game:\n  prefix: " + root().toUtf8() + "/home/Games/other\n");

    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].launcher, QStringLiteral("Lutris"));
    EXPECT_EQ(found[0].runner.program, wine);
    EXPECT_EQ(found[0].gameFolder, prefix + QStringLiteral("/drive_c/CoH"));
}

TEST_F(GameInstallationsTest, RegistryFolderThatIsGoneFallsBackToTheSearch) {
    const QString prefix = MakePrefix(root(), QStringLiteral("home/.wine"),
                                      GameRegistry(QStringLiteral("C:\\Gone"), 800, 600));
    WriteAt(root(), QStringLiteral("home/.wine/drive_c/b/cityofheroes.exe"), "MZ");
    WriteAt(root(), QStringLiteral("home/.wine/drive_c/a/paragonchat.exe"), "MZ");
    qunsetenv("WINEPREFIX");
    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 2); // every folder the search finds, in name order
    EXPECT_EQ(found[0].gameFolder, prefix + QStringLiteral("/drive_c/a"));
    EXPECT_EQ(found[1].gameFolder, prefix + QStringLiteral("/drive_c/b"));
    EXPECT_EQ(found[0].screen, QSize(800, 600)); // the prefix's keys still tell the size
}

TEST_F(GameInstallationsTest, LinkedGameFolderBelongsToThePrefixOfItsRealPath) {
    const QString bottle =
        MakePrefix(root(), QStringLiteral("home/.local/share/bottles/bottles/B"));
    WriteAt(bottle, QStringLiteral("bottle.yml"), "Runner: r1\n");
    const QString wine =
        MakeProgram(root(), QStringLiteral("home/.local/share/bottles/runners/r1/bin/wine"));
    QDir().mkpath(bottle + QStringLiteral("/drive_c/CoH"));
    QFile::link(bottle + QStringLiteral("/drive_c/CoH"), root() + QStringLiteral("/coh-link"));

    QString prefix;
    const GameRunner runner = RunnerForGameFolder(root() + QStringLiteral("/coh-link"), &prefix);
    EXPECT_EQ(prefix, bottle);
    EXPECT_EQ(runner.program, wine);
    // A folder in no prefix runs with the Wine on PATH and no prefix.
    EXPECT_EQ(RunnerForGameFolder(root(), &prefix), SystemWine());
    EXPECT_EQ(prefix, QString());
}

} // namespace
