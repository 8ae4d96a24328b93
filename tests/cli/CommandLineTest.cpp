#include "app/BusyHost.h"
#include "common/FakeUi.h"
#include "common/LauncherFixtures.h"
#include "common/TestEnvironment.h"
#include "common/TestPictures.h"
#include "texture/ScreenInstall.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QThread>

namespace {

// The real program, started as a player's script would start it: no display
// of any kind in its environment, the test's "bin" first on PATH.
class CommandLineTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        game = makeGame();
        picture = root() + QStringLiteral("/picture.png");
        GradientImage(320, 200).save(picture);
    }

    struct Run {
        int exit = -1;
        QString out;
        QString err;
    };
    Run run(QStringList arguments, bool withGame = true) {
        QProcess program;
        QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
        for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
            environment.remove(QString::fromLatin1(name));
        environment.insert("PATH", root() + "/bin:" + environment.value("PATH"));
        program.setProcessEnvironment(environment);
        if (withGame && !arguments.contains(QStringLiteral("--game")))
            arguments << QStringLiteral("--game") << game;
        program.start(QStringLiteral(KELVARIS_PROGRAM), arguments);
        program.waitForFinished(120000);
        return {program.exitStatus() == QProcess::NormalExit ? program.exitCode() : -1,
                QString::fromLocal8Bit(program.readAllStandardOutput()),
                QString::fromLocal8Bit(program.readAllStandardError())};
    }
    QString loginTexture() const { return ScreenTextureFile(game, kLoginScreen); }

    QString game;
    QString picture;
};

TEST_F(CommandLineTest, TyposExitWithTwoAndTheUsage) {
    for (const QStringList& arguments :
         {QStringList{"paint"}, QStringList{"screen", "credits", "x.png"},
          QStringList{"screen", "login", "x.png", "--levels", "0", "300"},
          QStringList{"music", "a.ogg", "elevator"}, QStringList{"online", "clear", "6"}}) {
        const Run result = run(arguments);
        EXPECT_EQ(result.exit, 2) << arguments.join(u' ').toStdString();
        EXPECT_TRUE(result.err.contains(QStringLiteral("Usage:")));
    }
    EXPECT_TRUE(QDir(game).isEmpty());
}

TEST_F(CommandLineTest, HelpNamesEveryCommand) {
    const Run help = run({"--help"});
    EXPECT_EQ(help.exit, 0);
    for (const char* command :
         {"screen", "library add", "library list", "texture list", "texture set", "texture restore",
          "music", "online", "catalogue", "settings", "status"})
        EXPECT_TRUE(help.out.contains(QLatin1String(command))) << command;
    EXPECT_TRUE(run({"--version"}).out.startsWith(QStringLiteral("kelvaris ")));
}

TEST_F(CommandLineTest, AScreenIsTheSameBytesAsTheWindowWrites) {
    ASSERT_EQ(run({"screen", "login", picture}).exit, 0);
    const QByteArray fromCommand = readFile(loginTexture());
    ASSERT_FALSE(fromCommand.isEmpty());

    // The same operation in process, as the Screens tab runs it.
    QFile::remove(loginTexture());
    FakeUi ui;
    HeadlessBusy busy;
    ASSERT_TRUE(
        InstallScreen(kLoginScreen, picture, {}, MakeTextureContext(game, false), busy, ui));
    EXPECT_EQ(readFile(loginTexture()), fromCommand);

    // A picture that cannot be read fails with the window's message.
    const Run bad = run({"screen", "character", root() + QStringLiteral("/none.png")});
    EXPECT_EQ(bad.exit, 1);
    EXPECT_TRUE(bad.err.contains(QStringLiteral("Image could not be loaded.")));
}

// Each command's change, then a restore that undoes every one and gives back
// what was replaced.
TEST_F(CommandLineTest, LibraryTextureMusicAndRestoreRoundTrip) {
    const QString own = writeFile(QStringLiteral("game/data/sound/Ogg/FrontEnd/H_music1_loop.ogg"),
                                  "OggS the player's own");
    ASSERT_EQ(run({"library", "add", "character", picture}).exit, 0);
    EXPECT_EQ(run({"library", "list", "character"}).out,
              QStringLiteral("character\tpicture.png.dds\n"));

    // A catalogue texture: restored only when the question is answered.
    ASSERT_EQ(run({"texture", "set", "Backgrounds", "Login screen", picture}).exit, 0);
    EXPECT_TRUE(QFileInfo::exists(loginTexture()));
    EXPECT_TRUE(run({"texture", "list", "1"}).out.contains(QStringLiteral("\treplaced")));
    const Run refused = run({"texture", "restore", "Backgrounds", "1"});
    EXPECT_EQ(refused.exit, 1);
    EXPECT_TRUE(refused.err.contains(QStringLiteral("--yes")));
    EXPECT_TRUE(QFileInfo::exists(loginTexture()));
    EXPECT_EQ(run({"texture", "restore", "Backgrounds", "--all", "--yes"}).exit, 0);
    EXPECT_FALSE(QFileInfo::exists(loginTexture()));

    // Music: an Ogg file is copied as it is to every file of its targets.
    const QString ogg = writeFile(QStringLiteral("song.ogg"), "OggS Kelvaris's");
    ASSERT_EQ(run({"music", ogg, "hero-login", "boombox:Altitude"}).exit, 0);
    const QString boombox = game + QStringLiteral("/data/sound/Ogg/BoomBox/Track9_loop.ogg");
    EXPECT_EQ(readFile(own), QByteArray("OggS Kelvaris's"));
    EXPECT_EQ(readFile(boombox), QByteArray("OggS Kelvaris's"));

    // Status lists what is there now.
    const QJsonObject status =
        QJsonDocument::fromJson(run({"status", "--json"}).out.toUtf8()).object();
    EXPECT_EQ(status.value(QStringLiteral("game")).toString(), game);
    const QString files = QString::fromUtf8(QJsonDocument(status).toJson());
    EXPECT_TRUE(files.contains(QStringLiteral("Kelvaris/RandomHC/picture.png.dds")));
    EXPECT_TRUE(files.contains(QStringLiteral("data/sound/Ogg/FrontEnd/H_music2_loop.ogg")));
    EXPECT_FALSE(files.contains(QStringLiteral("COH_LogInScreen_Background")));

    ASSERT_EQ(run({"screen", "login", picture}).exit, 0);
    EXPECT_EQ(run({"restore", "--all"}).exit, 1); // asks first
    EXPECT_EQ(readFile(own), QByteArray("OggS Kelvaris's"));
    const Run restored = run({"restore", "--all", "--yes"});
    EXPECT_EQ(restored.exit, 0) << restored.err.toStdString();
    EXPECT_EQ(readFile(own), QByteArray("OggS the player's own"));
    EXPECT_FALSE(QFileInfo::exists(loginTexture()));
    EXPECT_FALSE(QFileInfo::exists(boombox));
    // The library is Kelvaris's own and stays.
    EXPECT_EQ(run({"library", "list", "character"}).out,
              QStringLiteral("character\tpicture.png.dds\n"));
}

TEST_F(CommandLineTest, SettingsAndOnlineSlotsGoToTheStore) {
    EXPECT_EQ(run({"settings", "set", "FrameHL", "/frames/hl.png"}).exit, 0);
    EXPECT_EQ(run({"settings", "get", "FrameHL"}).out, QStringLiteral("/frames/hl.png\n"));
    EXPECT_EQ(run({"settings", "set", "FrameHL", "two\nlines"}).exit, 1);
    EXPECT_EQ(run({"online", "set", "2", "http://example.invalid/a.png", "Backgrounds",
                   "Character creation"})
                  .exit,
              0);
    const QString list = run({"online", "list"}).out;
    EXPECT_TRUE(list.contains(QStringLiteral("2\thttp://example.invalid/a.png\tCharacter creation "
                                             "(1024x1024)")));
    const QString exported = root() + QStringLiteral("/slots.reg");
    EXPECT_EQ(run({"online", "export", exported}).exit, 0);
    EXPECT_TRUE(readFile(exported).contains("\"webLink1\"=\"http://example.invalid/a.png\""));
    EXPECT_EQ(run({"online", "clear", "2"}).exit, 0);
    EXPECT_EQ(run({"settings", "get", "webPath1"}).out, QStringLiteral("\n"));
    EXPECT_EQ(run({"online", "import", exported}).exit, 0);
    EXPECT_TRUE(run({"settings", "list"}).out.contains(QStringLiteral("webFile1=background")));
}

TEST_F(CommandLineTest, GamesListsTheInstallationsAndGameTakesTheirNumber) {
    using namespace LauncherFixtures;
    const QString prefix =
        MakePrefix(root(), QStringLiteral("wine"), GameRegistry(QStringLiteral("C:\\Games\\CoH")));
    WriteAt(prefix, QStringLiteral("drive_c/Games/CoH/cityofheroes.exe"), "MZ");
    const QString folder = prefix + QStringLiteral("/drive_c/Games/CoH");
    EXPECT_EQ(run({"games"}).out, QStringLiteral("1\tWine\t%1\t%2\n").arg(prefix, folder));

    // The listed number stands for the folder.
    ASSERT_EQ(run({"screen", "login", picture, "--game", "1"}).exit, 0);
    EXPECT_TRUE(QFileInfo::exists(ScreenTextureFile(folder, kLoginScreen)));
    EXPECT_EQ(run({"status", "--game", "2"}).exit, 2);
}

// The randomizer start as the player's launcher runs it: with nothing to
// refresh online it installs the backgrounds, starts the client and ends.
TEST_F(CommandLineTest, TheRandomizerStartEndsWithoutAWindowSystemWhenNothingIsToRefresh) {
    writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/one.dds"), QByteArray(200, 'd'));
    const QString started = root() + QStringLiteral("/started");
    const QString wine =
        LauncherFixtures::WriteAt(root(), QStringLiteral("bin/wine"),
                                  "#!/bin/sh\necho \"$@\" >\"" + started.toUtf8() + "\"\n");
    QFile::setPermissions(wine, QFile::ReadOwner | QFile::ExeOwner);
    // A slot with an address but no texture has nothing to download.
    storeSetting("CohPath", game);
    storeSetting("webLink0", "http://example.invalid/a.png");
    const Run result = run({"-randomizer", "-x", "1"}, false);
    EXPECT_EQ(result.exit, 0) << result.err.toStdString();
    EXPECT_TRUE(QFile::exists(loginTexture()));
    for (int wait = 0; wait < 100 && !QFile::exists(started); ++wait)
        QThread::msleep(50);
    EXPECT_TRUE(readFile(started).endsWith("paragonchat.exe -x 1\n"))
        << readFile(started).constData();
}

} // namespace
