#include "randomizer/ChatClientLauncher.h"

#include "WineOnPath.h"

namespace {

using ChatClientTest = WineOnPath;

TEST_F(ChatClientTest, StartsTheClientThroughWineInTheGameFolder) {
    const QString game = winePrefix() + QStringLiteral("/drive_c/Games/CoH");
    QDir().mkpath(winePrefix() + QStringLiteral("/dosdevices"));
    writeFile(QStringLiteral("wine/drive_c/Games/CoH/ParagonChat.exe"), "MZ");

    ASSERT_TRUE(LaunchChatClient(game, QStringLiteral("  -x 1 \"two words\""), ui));
    ASSERT_EQ(ui.starts.size(), 1);
    const ProgramStart& start = ui.starts[0];
    EXPECT_EQ(start.program, root() + QStringLiteral("/bin/wine"));
    EXPECT_EQ(start.arguments,
              QStringList({game + QStringLiteral("/ParagonChat.exe"), "-x", "1", "two words"}));
    EXPECT_EQ(start.workingFolder, game);
    EXPECT_EQ(start.environment.value(QStringLiteral("WINEPREFIX")), winePrefix());
    EXPECT_TRUE(ui.messages.isEmpty());
}

TEST_F(ChatClientTest, MissingClientIsToldWithTheFolder) {
    const QString game = root() + QStringLiteral("/game");
    QDir().mkpath(game);
    EXPECT_FALSE(LaunchChatClient(game, QStringLiteral(" "), ui));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text,
              QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n") + game);
    EXPECT_EQ(ui.messages[0].icon, MsgIcon::Critical);
    EXPECT_TRUE(ui.starts.isEmpty());
}

TEST_F(ChatClientTest, MissingWineIsToldClearly) {
    writeFile(QStringLiteral("game/paragonchat.exe"), "MZ");
    qputenv("PATH", (root() + QStringLiteral("/nothing-here")).toUtf8());
    EXPECT_FALSE(LaunchChatClient(root() + QStringLiteral("/game"), QStringLiteral(" "), ui));
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_TRUE(ui.messages[0].text.contains(QStringLiteral("Wine")));
    EXPECT_TRUE(ui.starts.isEmpty());
}

} // namespace
