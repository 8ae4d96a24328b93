#include "online/TexturesRegFile.h"

#include "common/TestEnvironment.h"
#include "online/OnlineSettings.h"

namespace {

const QByteArray kHead = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n";

using TexturesRegFileTest = TestEnvironment;

// Slot 0's values written as they are, quotes and backslash included, then
// read back after that slot was cleared and the addresses changed.
TEST_F(TexturesRegFileTest, ExportWritesThe32LinesUnescapedAndImportGivesThemBack) {
    StorePickedTexture(0,
                       {"Big \"Sign\" (512x256)", 512, 256, "texture_library/GUI", "back\\slash"});
    const QStringList links{"http://a/1.png", QString(), QString(), QString(),
                            "typed \"not saved\""};
    const QString path = root() + "/t.reg";
    ASSERT_TRUE(ExportOnlineTextures(path, links));
    QByteArray expected = kHead + "\"webName0\"=\"Big \"Sign\" (512x256)\"\r\n"
                                  "\"webPath0\"=\"texture_library/GUI\"\r\n"
                                  "\"webFile0\"=\"back\\slash\"\r\n"
                                  "\"webWidth0\"=\"512\"\r\n\"webHeight0\"=\"256\"\r\n"
                                  "\"webLink0\"=\"http://a/1.png\"\r\n";
    for (int slot = 1; slot < kDownloadSlots; ++slot)
        for (const char* name :
             {"webName", "webPath", "webFile", "webWidth", "webHeight", "webLink"})
            expected += '"' + QByteArray(name) + QByteArray::number(slot) + "\"=\"\"\r\n";
    expected.replace("\"webLink4\"=\"\"", "\"webLink4\"=\"typed \"not saved\"\"");
    ASSERT_EQ(readFile(path), expected);

    StoreClearedSelection(0);
    storeSetting("webLink0", "http://old/x.png");
    storeSetting("webLink3", "http://old/y.png");
    const TexturesImport result = ImportOnlineTextures(path);
    EXPECT_TRUE(result.problems.isEmpty()) << result.Message().toStdString();
    EXPECT_EQ(result.merged, 30);
    QStringList storedLinks;
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        storedLinks << setting(OnlineValueName(OnlineValue::Link, slot));
    EXPECT_EQ(storedLinks, links);
    EXPECT_EQ(TexturesRegText(storedLinks), expected);
}

struct ImportCase {
    const char* name;
    QByteArray text;
    int merged;          // values stored
    const char* message; // part of the message shown to the player
};

const ImportCase kImports[] = {
    {"OneValue", kHead + "\"webLink4\"=\"x\"\r\n", 1, "1 online texture setting(s) were imported."},
    {"NoHeaderLine", "[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n\"webPath2\"=\"x\"\r\n", 0,
     "REGEDIT4"},
    {"LeavesTheDataFolder",
     kHead + "\"webName2\"=\"x\"\r\n\"webPath2\"=\"texture_library/../../../etc\"\r\n"
             "\"webName1\"=\"fine\"\r\n",
     1, "slot 2"},
    {"FileNameClimbsOut",
     kHead + "\"webFile2\"=\"..\\\\..\\\\evil\"\r\n\"webLink0\"=\"http://a/b\"\r\n", 1,
     "outside the game's data/texture_library folder"},
    {"HugeValue",
     kHead + "\"webName2\"=\"" + QByteArray(10000, 'n') +
         "\"\r\n\"webPath2\"=\"texture_library/New\"\r\n",
     0, "too long"},
    {"OtherSettingsAndSlots",
     kHead + "\"CohPath\"=\"/evil\"\r\n\"LastOnlineUpdate\"=\"today\"\r\n"
             "\"webName7\"=\"x\"\r\n\"webLink3\"=\"http://a/c\"\r\n",
     1, "3 value(s) that are not online texture settings"},
    {"ControlCharacter", kHead + "\"webName1\"=\"a\tb\"\r\n\"webLink0\"=\"x\"\r\n", 1,
     "control character"},
    {"BrokenLines", kHead + "webName1=x\r\n\"webName1\r\n\"webName0\"=\"ok\"\r\n", 1, "2 line(s)"},
};

TEST_F(TexturesRegFileTest, ImportStoresOnlyTheGoodPartsAndSaysWhy) {
    storeSetting("webPath2", "texture_library/Kept");
    for (const ImportCase& c : kImports) {
        SCOPED_TRACE(c.name);
        const TexturesImport result = ImportOnlineTextures(writeFile("i.reg", c.text));
        EXPECT_EQ(result.merged, c.merged);
        EXPECT_TRUE(result.Message().contains(QString::fromLatin1(c.message)))
            << result.Message().toStdString();
        EXPECT_EQ(setting("webPath2"), "texture_library/Kept");
        EXPECT_EQ(setting("CohPath"), QString());
        EXPECT_EQ(setting("LastOnlineUpdate"), QString());
    }
}

} // namespace
