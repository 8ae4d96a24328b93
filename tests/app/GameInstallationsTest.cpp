#include "app/GameInstallations.h"

#include "common/CaseName.h"
#include "common/LauncherFixtures.h"
#include "common/TestEnvironment.h"

namespace {

using namespace LauncherFixtures;

// One launcher's layout in the home folder and the installation it gives.
// Paths are relative to the test's temporary folder, whose "home" is $HOME,
// the game folder to the prefix; a runner without "/" is looked up on PATH.
struct Found {
    const char* launcher;
    const char* prefix;
    const char* gameFolder;
    const char* program;
    const char* bottle = ""; // set for a runner through bottles-cli
    QSize screen = {};
};
struct LayoutCase {
    std::string name;
    Layout layout;
    Found found;
    const char* winePrefixVariable = ""; // $WINEPREFIX, when set
};

const QString kBottles = "home/.local/share/bottles/";

const LayoutCase kLayouts[] = {
    {"WINEPREFIX, folder from user.reg in another letter case",
     {{Prefix, "home/prefixes/coh", GameRegistry("C:\\GAMES\\city of heroes", 1920, 1080)},
      {Folder, "home/prefixes/coh/drive_c/Games/City of Heroes"}},
     {"Wine", "home/prefixes/coh", "drive_c/Games/City of Heroes", "wine", "", {1920, 1080}},
     "home/prefixes/coh"},
    {"~/.wine, game found below drive_c in any letter case",
     {{Prefix, "home/.wine"},
      {File, "home/.wine/drive_c/Program Files/CoH/CityOfHeroes.EXE", "MZ"}},
     {"Wine", "home/.wine", "drive_c/Program Files/CoH", "wine"}},
    {"Lutris with its own Wine runner",
     {{Prefix, "home/Games/coh"},
      {File, "home/Games/coh/drive_c/CoH/paragonchat.exe", "MZ"},
      {Program, "home/.local/share/lutris/runners/wine/lutris-7.2-x86_64/bin/wine"},
      {File, "home/.config/lutris/games/city-of-heroes-1700000000.yml",
       "game:\n  exe: ROOT/home/Games/coh/drive_c/CoH/paragonchat.exe\n"
       "  prefix: ROOT/home/Games/coh  # the game's prefix\n"
       "name: City of Heroes\nrunner: wine\nsystem:\n  env:\n    version: not-this\n"
       "wine:\n  dxvk: true\n  version: 'lutris-7.2-x86_64'\n"}},
     {"Lutris", "home/Games/coh", "drive_c/CoH",
      "home/.local/share/lutris/runners/wine/lutris-7.2-x86_64/bin/wine"}},
    {"Bottles with its runner",
     {{Prefix, kBottles + "bottles/CoH"},
      {File, kBottles + "bottles/CoH/bottle.yml",
       "Arch: win64\nName: City of Heroes\nRunner: caffe-7.20\nPath: CoH\n"},
      {File, kBottles + "bottles/CoH/drive_c/Games/CoH/cityofheroes.exe", "MZ"},
      {Program, kBottles + "runners/caffe-7.20/bin/wine"}},
     {"Bottles", "home/.local/share/bottles/bottles/CoH", "drive_c/Games/CoH",
      "home/.local/share/bottles/runners/caffe-7.20/bin/wine"}},
    {"Bottles without its runner goes through bottles-cli",
     {{Prefix, kBottles + "bottles/Heroes", GameRegistry("C:\\CoH")},
      {Folder, kBottles + "bottles/Heroes/drive_c/CoH"},
      {File, kBottles + "bottles/Heroes/bottle.yml", "Runner: soda-9.0\n"}},
     {"Bottles", "home/.local/share/bottles/bottles/Heroes", "drive_c/CoH", "bottles-cli",
      "Heroes"}},
    {"Steam library from libraryfolders.vdf, Proton named by version",
     {{File, "home/.steam/steam/steamapps/libraryfolders.vdf",
       "\"libraryfolders\"\n{\n\t\"0\"\n\t{\n\t\t\"path\"\t\t\"ROOT/home/.steam/steam\"\n\t}\n"
       "\t\"1\"\n\t{\n\t\t\"path\"\t\t\"ROOT/disk/Steam "
       "Library\"\n\t\t\"label\"\t\t\"\"\n\t}\n}\n"},
      {Prefix, "disk/Steam Library/steamapps/compatdata/7/pfx"},
      {File, "disk/Steam Library/steamapps/compatdata/7/pfx/drive_c/a/b/c/d/cityofvillains.exe",
       "MZ"},
      {File, "disk/Steam Library/steamapps/compatdata/7/version", "GE-Proton8-25\n"},
      {Program, "home/.steam/steam/compatibilitytools.d/GE-Proton8-25/dist/bin/wine"}},
     {"Steam", "disk/Steam Library/steamapps/compatdata/7/pfx", "drive_c/a/b/c/d",
      "home/.steam/steam/compatibilitytools.d/GE-Proton8-25/dist/bin/wine"}},
    {"Heroic with the game's Wine from GamesConfig",
     {{Prefix, "home/Games/Heroic/Prefixes/CoH", GameRegistry("C:\\Games\\CoH", 1024, 768)},
      {Folder, "home/Games/Heroic/Prefixes/CoH/drive_c/Games/CoH"},
      {Program, "home/.config/heroic/tools/wine/Wine-GE/bin/wine"},
      {File, "home/.config/heroic/GamesConfig/other.json",
       "{\"other\": {\"winePrefix\": \"/elsewhere\", \"wineVersion\": {\"bin\": "
       "\"/usr/bin/true\"}}}"},
      {File, "home/.config/heroic/GamesConfig/abc123.json",
       "{\"abc123\": {\"winePrefix\": \"ROOT/home/Games/Heroic/Prefixes/CoH\", \"wineVersion\": "
       "{\"bin\": \"ROOT/home/.config/heroic/tools/wine/Wine-GE/bin/wine\", \"type\": "
       "\"wine\"}}}"}},
     {"Heroic",
      "home/Games/Heroic/Prefixes/CoH",
      "drive_c/Games/CoH",
      "home/.config/heroic/tools/wine/Wine-GE/bin/wine",
      "",
      {1024, 768}}},
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
    const Found& f = c.found;
    if (*c.winePrefixVariable)
        qputenv("WINEPREFIX", at(c.winePrefixVariable).toUtf8());
    Lay(root(), c.layout);
    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 1);
    const GameInstallation& game = found[0];
    EXPECT_EQ(game.launcher, QString::fromLatin1(f.launcher));
    EXPECT_EQ(game.prefix, at(f.prefix));
    EXPECT_EQ(game.gameFolder, at(f.prefix) + u'/' + QString::fromLatin1(f.gameFolder));
    const QString program = QString::fromLatin1(f.program);
    EXPECT_EQ(game.runner.program, program.contains(u'/') ? at(f.program) : program);
    EXPECT_EQ(game.runner.kind, *f.bottle ? GameRunner::Kind::Bottles : GameRunner::Kind::Wine);
    EXPECT_EQ(game.runner.bottle, QString::fromLatin1(f.bottle));
    EXPECT_TRUE(game.runner.programArguments.isEmpty());
    EXPECT_EQ(game.screen.value_or(QSize()), f.screen);
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
    Layout layout;
};

const QString kLutrisCoh = "home/.config/lutris/games/coh.yml";
const Layout kLutrisGame = {{Prefix, "home/Games/coh"},
                            {File, "home/Games/coh/drive_c/cityofheroes.exe", "MZ"}};

const BrokenCase kBroken[] = {
    {"Lutris game of another runner",
     kLutrisGame +
         Layout{{File, kLutrisCoh, "game:\n  prefix: ROOT/home/Games/coh\nrunner: linux\n"}}},
    // A loop inside the prefix is walked once.
    {"game programs that are a FIFO, a folder and a link out of the prefix",
     {{Prefix, "home/.wine"},
      {Fifo, "home/.wine/drive_c/cityofheroes.exe"},
      {Folder, "home/.wine/drive_c/a/paragonchat.exe"},
      {File, "outside/CoH/cityofheroes.exe", "MZ"},
      {Link, "home/.wine/drive_c/users", "ROOT/outside"},
      {Link, "home/.wine/drive_c/a/loop", "ROOT/home/.wine/drive_c"}}},
    {"drive_c/windows is never searched",
     {{Prefix, "home/.wine"}, {File, "home/.wine/drive_c/windows/cityofheroes.exe", "MZ"}}},
};

class BrokenLauncherFiles : public TestEnvironment,
                            public ::testing::WithParamInterface<BrokenCase> {};

TEST_P(BrokenLauncherFiles, GiveNoInstallation) {
    Lay(root(), GetParam().layout);
    EXPECT_TRUE(FindGameInstallations().isEmpty());
}

INSTANTIATE_TEST_SUITE_P(Files, BrokenLauncherFiles, ::testing::ValuesIn(kBroken),
                         CaseName<BrokenCase>);

using GameInstallationsTest = TestEnvironment;

TEST_F(GameInstallationsTest, OneEntryPerRealGameFolderWithTheLaunchersWine) {
    // $WINEPREFIX and ~/.wine both lead to the Lutris prefix, and a second
    // prefix's registry names the same game folder: Lutris's own Wine is the
    // one that runs it.
    Lay(root(),
        {{Prefix, "home/Games/coh"},
         {File, "home/Games/coh/drive_c/CoH/cityofheroes.exe", "MZ"},
         {Program, "home/.local/share/lutris/runners/wine/v1/bin/wine"},
         {File, "home/.config/lutris/games/coh.yml",
          "game:\n  prefix: ROOT/home/Games/coh\nwine:\n  version: v1\n"},
         {Link, "home/.wine", "ROOT/home/Games/coh"},
         {Prefix, "home/Games/other", GameRegistry("Z:" + root() + "/home/Games/coh/drive_c/CoH")},
         {Link, "home/Games/other/dosdevices/z:", "/"},
         {File, "home/.config/lutris/games/other.yml",
          "game:\n  prefix: ROOT/home/Games/other\n"}});
    qputenv("WINEPREFIX", (root() + "/home/Games/coh").toUtf8());
    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 1);
    EXPECT_EQ(found[0].launcher, QStringLiteral("Lutris"));
    EXPECT_EQ(found[0].runner.program,
              root() + "/home/.local/share/lutris/runners/wine/v1/bin/wine");
    EXPECT_EQ(found[0].gameFolder, root() + "/home/Games/coh/drive_c/CoH");
}

TEST_F(GameInstallationsTest, RegistryFolderThatIsGoneFallsBackToTheSearch) {
    qunsetenv("WINEPREFIX");
    Lay(root(), {{Prefix, "home/.wine", GameRegistry("C:\\Gone", 800, 600)},
                 {File, "home/.wine/drive_c/b/cityofheroes.exe", "MZ"},
                 {File, "home/.wine/drive_c/a/paragonchat.exe", "MZ"}});
    const QList<GameInstallation> found = FindGameInstallations();
    ASSERT_EQ(found.size(), 2); // every folder the search finds, in name order
    EXPECT_EQ(found[0].gameFolder, root() + "/home/.wine/drive_c/a");
    EXPECT_EQ(found[1].gameFolder, root() + "/home/.wine/drive_c/b");
    EXPECT_EQ(found[0].screen, QSize(800, 600)); // the prefix's keys still tell the size
}

TEST_F(GameInstallationsTest, LinkedGameFolderBelongsToThePrefixOfItsRealPath) {
    Lay(root(), {{Prefix, kBottles + "bottles/B"},
                 {File, kBottles + "bottles/B/bottle.yml", "Runner: r1\n"},
                 {Program, kBottles + "runners/r1/bin/wine"},
                 {Folder, kBottles + "bottles/B/drive_c/CoH"},
                 {Link, "coh-link", "ROOT/" + kBottles.toUtf8() + "bottles/B/drive_c/CoH"}});
    QString prefix;
    const GameRunner runner = RunnerForGameFolder(root() + "/coh-link", &prefix);
    EXPECT_EQ(prefix, root() + u'/' + kBottles + "bottles/B");
    EXPECT_EQ(runner.program, root() + u'/' + kBottles + "runners/r1/bin/wine");
    // A folder in no prefix runs with the Wine on PATH and no prefix.
    EXPECT_EQ(RunnerForGameFolder(root(), &prefix), SystemWine());
    EXPECT_EQ(prefix, QString());
}

} // namespace
