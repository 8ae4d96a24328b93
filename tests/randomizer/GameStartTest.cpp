#include "common/LauncherFixtures.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QProcess>
#include <QThread>

namespace {

using GameStartTest = TestEnvironment;

// The randomizer start as the player's launcher runs it: with nothing to
// refresh online it installs the backgrounds, starts the client and ends,
// without bringing up any window system (here: none is there at all).
TEST_F(GameStartTest, EndsWithoutAWindowSystemWhenNothingIsToRefresh) {
    const QString game = root() + QStringLiteral("/game");
    writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/one.dds"), QByteArray(200, 'd'));
    const QString started = root() + QStringLiteral("/started");
    LauncherFixtures::WriteAt(root(), QStringLiteral("bin/wine"),
                              "#!/bin/sh\necho \"$@\" >\"" + started.toUtf8() + "\"\n");
    QFile::setPermissions(root() + QStringLiteral("/bin/wine"),
                          QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    writeFile(QStringLiteral("config/kelvaris/registry.reg"),
              "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n\"CohPath\"=\"" +
                  game.toUtf8() + "\"\r\n\"webLink0\"=\"http://example.invalid/a.png\"\r\n");

    QProcess start;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"})
        environment.remove(QString::fromLatin1(name));
    environment.insert(QStringLiteral("PATH"), root() + QStringLiteral("/bin:") +
                                                   environment.value(QStringLiteral("PATH")));
    start.setProcessEnvironment(environment);
    start.start(QStringLiteral(KELVARIS_PROGRAM), {"-randomizer", "-x", "1"});
    ASSERT_TRUE(start.waitForFinished(60000));
    EXPECT_EQ(start.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(start.exitCode(), 0) << start.readAllStandardError().constData();
    EXPECT_TRUE(QFile::exists(
        game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                              "COH_LogInScreen_Background.texture")));
    // A slot with an address but no texture has nothing to download.
    for (int wait = 0; wait < 100 && !QFile::exists(started); ++wait)
        QThread::msleep(50);
    EXPECT_TRUE(readFile(started).endsWith("paragonchat.exe -x 1\n"))
        << readFile(started).constData();
}

} // namespace
