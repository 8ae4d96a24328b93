#include "app/FileRecord.h"
#include "app/StartUp.h"
#include "app/modRegistry.h"
#include "common/TestEnvironment.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <thread>

using namespace modRegistry;

namespace {

class RegistryTest : public TestEnvironment {
protected:
    QStringList asideFiles() const {
        return QDir(configHome() + "/kelvaris")
            .entryList({"registry.reg.unreadable-*"}, QDir::Files);
    }
};

TEST_F(RegistryTest, BlankDeletesAndOtherTextRoundTripsUntrimmedUnderAnyLetterCase) {
    // Nothing to store: no store is made, and deleting what is not there says so.
    EXPECT_FALSE(SetValue(kSettingsKey, "CohPath", "   "));
    EXPECT_FALSE(QFile::exists(storeFile()));
    EXPECT_EQ(CreateKey(kSettingsKey), 1); // new
    EXPECT_EQ(CreateKey(kSettingsKey), 2); // existing

    const QString awkward = " C:\\Games\\\"CoH\" ; [x] = é ";
    EXPECT_TRUE(SetValue(kSettingsKey, "FrameHL", awkward));
    EXPECT_TRUE(readFile(storeFile()).startsWith("REGEDIT4\r\n"));
    EXPECT_EQ(QueryValue("software\\cohkelvaris", "framehl"), awkward);
    SetValue(kSettingsKey, "FRAMEHL", "b");
    EXPECT_EQ(QueryValue(kSettingsKey, "FrameHL"), "b");

    EXPECT_TRUE(SetValue(kSettingsKey, "FrameHL", "   "));
    EXPECT_EQ(QueryValue(kSettingsKey, "FrameHL"), QString());
    EXPECT_FALSE(readFile(storeFile()).toLower().contains("framehl"));
    EXPECT_FALSE(SetValue(kSettingsKey, "FrameHL", QString()));
}

TEST_F(RegistryTest, ValuesLongerThan1023CharactersReadAsEmptyAndCostNothingElse) {
    SetValue(kSettingsKey, "Ok", QString(1023, u'x'));
    SetValue(kSettingsKey, "TooLong", QString(1024, u'x'));
    SetValue(kSettingsKey, "Huge", QString(10 * 1024 * 1024, u'y'));
    EXPECT_EQ(QueryValue(kSettingsKey, "Ok").size(), 1023);
    EXPECT_EQ(QueryValue(kSettingsKey, "TooLong"), QString());
    EXPECT_EQ(QueryValue(kSettingsKey, "Huge"), QString());
    EXPECT_TRUE(asideFiles().isEmpty());
}

TEST_F(RegistryTest, OnlyAFileThatIsNoStoreAtAllIsKeptAside) {
    const QByteArray garbage[] = {QByteArray("this is not a registry file\n"),
                                  QByteArray("\x89PNG\r\n\x1a\n\0\0\0binary", 16)};
    int expectedAside = 0;
    for (const QByteArray& bytes : garbage) {
        writeFile("config/kelvaris/registry.reg", bytes);
        EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), QString());
        ASSERT_EQ(asideFiles().size(), ++expectedAside) << bytes.constData();
        // The tool goes on with defaults and may write a fresh store.
        EXPECT_TRUE(SetValue(kSettingsKey, "CohPath", "/new"));
        EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), "/new");
        QFile::remove(storeFile());
    }
    // Every unreadable store survives byte for byte beside the new one.
    QList<QByteArray> kept;
    for (const QString& name : asideFiles())
        kept << readFile(configHome() + "/kelvaris/" + name);
    for (const QByteArray& bytes : garbage)
        EXPECT_TRUE(kept.contains(bytes));
}

// A store as Wine's and Windows' registry editors write it, with the game's
// own keys merged in, and lines an older Kelvaris or a hand edit left broken.
const char kMixedStore[] = "REGEDIT4\r\n"
                           "; the player's note\r\n"
                           "\r\n"
                           "[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n"
                           "\"CohPath\"=\"/games/coh\"\r\n"
                           "\"Broken\"=\"a value whose line\r\n"
                           "was cut in two\"\r\n"
                           "\"Nul\"=\"x\0y\"\r\n"
                           "\r\n"
                           "[HKEY_CURRENT_USER\\Software\\Cryptic\\Coh]\r\n"
                           "\"screenX\"=dword:00000780\r\n"
                           "\"Blob\"=hex:01,02,03,\\\r\n"
                           "  04,05\r\n"
                           "\"Path\"=hex(2):43,3a,00\r\n"
                           "\"Cut\"=hex:0a,\\\\\r\n"
                           "\r\n"
                           "[HKEY_CURRENT_USER\\Unclosed\r\n"
                           "\"inside\"=\"kept\"\r\n";

TEST_F(RegistryTest, ValuesItDoesNotExpectCostNothingAndAreKeptVerbatim) {
    const QByteArray mixed(kMixedStore, sizeof kMixedStore - 1);
    writeFile("config/kelvaris/registry.reg", mixed);
    EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), "/games/coh");
    EXPECT_EQ(StartGameFolder(), "/games/coh"); // the randomizer finds the game
    const QString coh = "Software\\Cryptic\\Coh";
    EXPECT_EQ(QueryValue(coh, "screenX"), "1920");
    EXPECT_EQ(QueryValue(coh, "Blob"), QString());
    EXPECT_EQ(QueryValue(kSettingsKey, "Broken"), QString());

    // A change rewrites the store: what Kelvaris does not read comes back
    // exactly as it stood, and nothing is set aside.
    EXPECT_TRUE(SetValue(kSettingsKey, "Frames", "1"));
    const QByteArray rewritten = readFile(storeFile());
    for (const char* line :
         {"; the player's note\r\n", "\"screenX\"=dword:00000780\r\n",
          "\"Blob\"=hex:01,02,03,\\\r\n  04,05\r\n", "\"Path\"=hex(2):43,3a,00\r\n",
          "\"Broken\"=\"a value whose line\r\n", "was cut in two\"\r\n",
          "[HKEY_CURRENT_USER\\Unclosed\r\n\"inside\"=\"kept\"\r\n"})
        EXPECT_TRUE(rewritten.contains(line)) << line;
    EXPECT_TRUE(rewritten.contains(QByteArray("\"Nul\"=\"x\0y\"\r\n", 13)));
    // A binary value cut short loses its dangling backslashes once, and then
    // every rewrite gives the same file.
    EXPECT_TRUE(rewritten.contains("\"Cut\"=hex:0a,\r\n"));
    EXPECT_TRUE(SetValue(kSettingsKey, "Frames", "1"));
    EXPECT_EQ(readFile(storeFile()), rewritten);
    EXPECT_TRUE(asideFiles().isEmpty());
    EXPECT_EQ(QueryValue(coh, "screenX"), "1920");
    EXPECT_EQ(QueryValue(kSettingsKey, "Frames"), "1");
    // Storing over a value of another type makes it a string.
    EXPECT_TRUE(SetValue(coh, "screenX", "1024"));
    EXPECT_TRUE(readFile(storeFile()).contains("\"screenX\"=\"1024\""));
}

TEST_F(RegistryTest, TextTheStoreCannotGiveBackIsRefusedAndNothingWritten) {
    SetValue(kSettingsKey, "CohPath", "/games/coh");
    const QByteArray before = readFile(storeFile());
    const QString refused[] = {"two\nlines", "carriage\rreturn", "nul" + QChar(0) + "byte",
                               "tab\there", "escape\x1b"};
    for (const QString& text : refused) {
        EXPECT_FALSE(SetValue(kSettingsKey, "CohPath", text));
        EXPECT_FALSE(SetValue(kSettingsKey, text, "x"));
        EXPECT_EQ(CreateKey("Software\\" + text), 0);
    }
    EXPECT_EQ(readFile(storeFile()), before);
    EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), "/games/coh");
}

TEST_F(RegistryTest, AFullDiskKeepsTheStoreAsItWasAndSaysSo) {
    SetValue(kSettingsKey, "CohPath", "/games/coh");
    SetValue(kSettingsKey, "webLink0", "http://a/b");
    const QByteArray before = readFile(storeFile());
    FailWritesAfter(0);
    EXPECT_FALSE(SetValue(kSettingsKey, "webLink1", "http://c"));
    EXPECT_FALSE(SetValue(kSettingsKey, "CohPath", "   "));
    EXPECT_EQ(readFile(storeFile()), before);
    FailWritesAfter(-1);
    // The next write keeps everything that was there.
    EXPECT_TRUE(SetValue(kSettingsKey, "webLink1", "http://c"));
    EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), "/games/coh");
    EXPECT_EQ(QueryValue(kSettingsKey, "webLink0"), "http://a/b");
    EXPECT_EQ(QDir(configHome() + "/kelvaris").entryList(QDir::Files), QStringList{"registry.reg"});
}

// The window and a randomizer run write the store at the same time, after a
// Kelvaris that was killed left its lock behind.
TEST_F(RegistryTest, TwoWritersAtOnceLoseNothingAndALeftLockIsTakenOver) {
    writeFile("config/kelvaris/registry.reg.lock", "2147483646\nkelvaris\n\n");
    constexpr int kEach = 150;
    auto writer = [](char who) {
        for (int i = 0; i < kEach; ++i)
            SetValue(kSettingsKey, QStringLiteral("%1%2").arg(who).arg(i), QString::number(i));
    };
    std::thread first(writer, 'a');
    std::thread second(writer, 'b');
    first.join();
    second.join();
    for (char who : {'a', 'b'})
        for (int i = 0; i < kEach; ++i)
            ASSERT_EQ(QueryValue(kSettingsKey, QStringLiteral("%1%2").arg(who).arg(i)),
                      QString::number(i))
                << who << i;
}

TEST_F(RegistryTest, StoreThatCannotBeReadIsNeverReplaced) {
    // A folder where the file should be: it cannot be opened, even by root.
    QDir().mkpath(storeFile());
    EXPECT_EQ(QueryValue(kSettingsKey, "CohPath"), QString());
    EXPECT_FALSE(SetValue(kSettingsKey, "CohPath", "/x"));
    EXPECT_EQ(CreateKey(kSettingsKey), 0);
    EXPECT_TRUE(QFileInfo(storeFile()).isDir());
}

// A hive as Wine writes it: header, escaped key names with timestamps,
// #time lines, dword values.
const char kUserReg[] = "WINE REGISTRY Version 2\n"
                        ";; All keys relative to \\\\User\\\\S-1-5-21-0-0-0-1000\n"
                        "\n"
                        "#arch=win32\n"
                        "\n"
                        "[Software\\\\Cryptic\\\\Coh] 1700000000\n"
                        "#time=1da1b2c3d4e5f60\n"
                        "\"Installation Directory\"=\"C:\\\\Games\\\\City of Heroes\"\n"
                        "\"screenX\"=dword:00000780\n"
                        "\"Resolution\"=hex:01,02,03\n"
                        "\n"
                        "[Software\\\\Cryptic\\\\CohBeta] 1700000001\n"
                        "\"Installation Directory\"=\"D:\\\\Beta\"\n"
                        "\"screenY\"=dword:00000300\n";

TEST_F(RegistryTest, GameKeysComeFromTheWinePrefixWithLinuxPaths) {
    writeFile("wine/user.reg", kUserReg);
    QDir().mkpath(winePrefix() + "/drive_c/GAMES/City of Heroes");
    QDir().mkpath(winePrefix() + "/dosdevices");
    QDir().mkpath(root() + "/elsewhere/Beta");
    QFile::link("../drive_c", winePrefix() + "/dosdevices/c:");
    QFile::link(root() + "/elsewhere", winePrefix() + "/dosdevices/d:");

    const QString coh = "Software\\Cryptic\\Coh";
    // Letter case of the folders on disk wins, as Wine finds them regardless.
    EXPECT_EQ(QueryValue(coh, "Installation Directory"),
              winePrefix() + "/drive_c/GAMES/City of Heroes");
    EXPECT_EQ(QueryValue(coh, "screenX"), "1920");
    EXPECT_EQ(QueryValue(coh, "screenY"), QString());
    EXPECT_EQ(QueryValue(coh, "Resolution"), QString());

    const QString beta = "Software\\Cryptic\\CohBeta";
    EXPECT_EQ(QueryValue(beta, "Installation Directory"), root() + "/elsewhere/Beta");
    EXPECT_EQ(QueryValue(beta, "screenY"), "768");

    // The store, where it has the value, comes first; Kelvaris's own key never
    // falls through to Wine.
    SetValue(coh, "screenX", "1024");
    EXPECT_EQ(QueryValue(coh, "screenX"), "1024");
    EXPECT_EQ(QueryValue(kSettingsKey, "screenX"), QString());
}

} // namespace
