#include "randomizer/RunRandomizer.h"

#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <cstring>

namespace {

// texPath + name + ".dds" + NUL
const qsizetype kLoginNameLength =
    qsizetype(strlen(
        "texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.dds")) +
    1;

class RunRandomizerTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        savedPath = qgetenv("PATH");
        savedCwd = QDir::currentPath();
        const QString bin = writeFile(QStringLiteral("bin/wine"), "#!/bin/sh\nexit 0\n");
        QFile::setPermissions(bin, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
        qputenv("PATH", (root() + QStringLiteral("/bin")).toUtf8());
        game = root() + QStringLiteral("/game");
        writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    }
    void TearDown() override {
        qputenv("PATH", savedPath);
        QDir::setCurrent(savedCwd);
        TestEnvironment::TearDown();
    }
    QString loginTexture() const {
        return game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/LoginScreen/"
                                     "COH_LogInScreen_Background.texture");
    }
    QString characterTexture() const {
        return game +
               QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/CharacterCreationUI/"
                              "background.texture");
    }

    QByteArray savedPath;
    QString savedCwd;
    QString game;
    FakeUi ui;
};

TEST_F(RunRandomizerTest, WritesBothScreensAndStartsTheClient) {
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/Sunset.dds"), QByteArray("DDS login", 9));
    writeFile(QStringLiteral("game/Kelvaris/RandomHC/city night.dds"), QByteArray("DDS char", 8));

    RunRandomizer(game, QStringLiteral("-randomizer -x 1"), ui);

    const QByteArray login = readFile(loginTexture());
    ASSERT_FALSE(login.isEmpty());
    EXPECT_TRUE(login.endsWith("DDS login"));
    EXPECT_TRUE(login.contains(
        "texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.dds"));
    EXPECT_EQ(login.size(), 32 + kLoginNameLength + 9);
    EXPECT_TRUE(readFile(characterTexture()).endsWith("DDS char"));
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("RandomHL")),
              QStringLiteral("Sunset.dds"));
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, QStringLiteral("RandomHC")),
              QStringLiteral("city night.dds"));

    ASSERT_EQ(ui.starts.size(), 1);
    EXPECT_EQ(ui.starts[0].arguments,
              QStringList({game + QStringLiteral("/paragonchat.exe"), "-x", "1"}));
    EXPECT_EQ(QDir::currentPath(), game);
}

TEST_F(RunRandomizerTest, MissingLibraryLeavesThatScreenAlone) {
    writeFile(QStringLiteral("game/Kelvaris/RandomHC/a.dds"), "DDS a");
    RunRandomizer(game, QStringLiteral("-randomizer"), ui);
    EXPECT_FALSE(QFile::exists(loginTexture()));
    EXPECT_TRUE(QFile::exists(characterTexture()));
    ASSERT_EQ(ui.starts.size(), 1);
}

TEST_F(RunRandomizerTest, EmptyLibraryMakesTheFolderButWritesNothing) {
    QDir().mkpath(game + QStringLiteral("/Kelvaris/RandomHL"));
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/notes.txt"), "x");
    RunRandomizer(game, QStringLiteral("-randomizer"), ui);
    EXPECT_TRUE(
        QDir(game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/LoginScreen"))
            .exists());
    EXPECT_FALSE(QFile::exists(loginTexture()));
}

TEST_F(RunRandomizerTest, UnreadableLibraryImageWritesNothing) {
    // A folder named like an image cannot be opened as one.
    QDir().mkpath(game + QStringLiteral("/Kelvaris/RandomHL/broken.dds"));
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/empty.dds"), QByteArray());
    RunRandomizer(game, QStringLiteral("-randomizer"), ui);
    // The zero-byte image may be wrapped (a header and nothing else); nothing crashes.
    EXPECT_EQ(ui.starts.size(), 1);
}

TEST_F(RunRandomizerTest, NoGameFolderWritesNowhereAndSaysSo) {
    const QString before = QDir::currentPath();
    RunRandomizer(QString(), QStringLiteral("-randomizer"), ui);
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n"));
    EXPECT_EQ(QDir::currentPath(), before);
}

} // namespace
