#include "randomizer/RunRandomizer.h"

#include "WineOnPath.h"
#include "app/StartUp.h"
#include "app/modRegistry.h"

#include <QFileInfo>
#include <sys/stat.h>

namespace {

const QByteArray kLoginName =
    "texture_library/GUI/CREATION/HybridUI/LoginScreen/COH_LogInScreen_Background.dds";

class RunRandomizerTest : public WineOnPath {
protected:
    void SetUp() override {
        WineOnPath::SetUp();
        game = root() + QStringLiteral("/game");
        writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    }
    QString texture(const char* folder, const char* name) const {
        return game + QStringLiteral("/data/texture_library/GUI/CREATION/HybridUI/") +
               QString::fromLatin1(folder) + u'/' + QString::fromLatin1(name) +
               QStringLiteral(".texture");
    }
    QString loginTexture() const { return texture("LoginScreen", "COH_LogInScreen_Background"); }

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
    EXPECT_TRUE(readFile(texture("CharacterCreationUI", "background")).endsWith(characterEntry));
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, "RandomHL"), QStringLiteral("Sunset.dds"));
    EXPECT_EQ(modRegistry::QueryValue(kSettingsKey, "RandomHC"), QStringLiteral("city night.dds"));

    const QStringList expected = {
        game + "/paragonchat.exe", "-project", "", "say \"hi\"", "C:\\x y", ""};
    ASSERT_EQ(ui.starts.size(), 2);
    EXPECT_EQ(ui.starts[0].arguments, expected);
    EXPECT_EQ(ui.starts[1].arguments, expected);
    EXPECT_EQ(QDir::currentPath(), game);
}

TEST_F(RunRandomizerTest, EmptyMissingOrUnreadableLibrariesWriteNothingButStillStart) {
    // Login: no file that can be opened as an image (a folder named like one).
    writeFile(QStringLiteral("game/Kelvaris/RandomHL/notes.txt"), "x");
    QDir().mkpath(game + QStringLiteral("/Kelvaris/RandomHL/broken.dds"));
    RunRandomizer(game, QStringList{"-randomizer"}, ui);
    EXPECT_TRUE(QDir(QFileInfo(loginTexture()).path()).exists()); // the folder is made
    EXPECT_FALSE(QFile::exists(loginTexture()));
    EXPECT_FALSE(QFile::exists(texture("CharacterCreationUI", "background"))); // no library
    EXPECT_EQ(ui.starts.size(), 1);

    // Entries that cannot be a picture are never installed, and none of them
    // holds up the game: an empty file, a link to an endless device, a link
    // to a FIFO nobody writes to.
    const QString characters = game + QStringLiteral("/Kelvaris/RandomHC/");
    writeFile(QStringLiteral("game/Kelvaris/RandomHC/empty.dds"), QByteArray());
    QFile::link(QStringLiteral("/dev/zero"), characters + QStringLiteral("zero.dds"));
    const QString fifo = root() + QStringLiteral("/fifo");
    ASSERT_EQ(::mkfifo(QFile::encodeName(fifo).constData(), 0600), 0);
    QFile::link(fifo, characters + QStringLiteral("waiting.dds"));
    RunRandomizer(game, QStringList{"-randomizer"}, ui);
    EXPECT_FALSE(QFile::exists(texture("CharacterCreationUI", "background")));
    EXPECT_EQ(ui.starts.size(), 2);
}

TEST_F(RunRandomizerTest, NoGameFolderWritesNowhereAndSaysSo) {
    const QString before = QDir::currentPath();
    RunRandomizer(QString(), QStringList{"-randomizer"}, ui);
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n"));
    EXPECT_EQ(QDir::currentPath(), before);
}

} // namespace
