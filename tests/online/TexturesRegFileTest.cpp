#include "online/TexturesRegFile.h"

#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "online/OnlineSettings.h"

#include <QFile>
#include <QRegularExpression>

namespace {

class TexturesRegFileTest : public TestEnvironment {
protected:
    static QString value(const QString& name) {
        return modRegistry::QueryValue(kSettingsKey, name);
    }
    static void store(const QString& name, const QString& data) {
        modRegistry::SetValue(kSettingsKey, name, data);
    }
    const QStringList links{QStringLiteral("http://a/1.png"), QString(), QString(), QString(),
                            QStringLiteral("typed \"not saved\"")};
};

TEST_F(TexturesRegFileTest, ExportWritesThe32LinesUnescaped) {
    StorePickedTexture(0, {QStringLiteral("Big \"Sign\" (512x256)"), 512, 256,
                           QStringLiteral("texture_library/GUI"), QStringLiteral("back\\slash")});
    const QString path = root() + u'/' + kTexturesRegFileName;
    ASSERT_TRUE(ExportOnlineTextures(path, links));

    // Slot 0's stored values, written as they are; the other slots are empty.
    const QByteArray slot0[] = {"Big \"Sign\" (512x256)", "texture_library/GUI", "back\\slash",
                                "512", "256"};
    const char* const names[] = {"webName",  "webPath",   "webFile",
                                 "webWidth", "webHeight", "webLink"};
    QByteArray expected = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n";
    for (int slot = 0; slot < kDownloadSlots; ++slot) {
        for (int i = 0; i < 6; ++i) {
            const QByteArray data = i == 5 ? links[slot].toUtf8() : slot == 0 ? slot0[i] : "";
            expected +=
                '"' + QByteArray(names[i]) + QByteArray::number(slot) + "\"=\"" + data + "\"\r\n";
        }
    }
    EXPECT_EQ(readFile(path), expected);
    EXPECT_EQ(readFile(path).count("\r\n"), 32);
}

TEST_F(TexturesRegFileTest, ExportAsksWhereToSaveAndStopsWhenCancelled) {
    FakeUi ui;
    AskAndExportOnlineTextures(ui, links); // the dialog is cancelled
    ASSERT_EQ(ui.saveRequests.size(), 1);
    EXPECT_EQ(ui.saveRequests[0].proposedName, QStringLiteral("Kelvaris Textures.reg"));
    EXPECT_EQ(ui.saveRequests[0].filter, QStringLiteral("Windows Registry files (reg)|*.reg"));
    ui.saveAnswers.push_back(root() + QStringLiteral("/out.reg"));
    AskAndExportOnlineTextures(ui, links);
    EXPECT_TRUE(readFile(root() + QStringLiteral("/out.reg")).startsWith("REGEDIT4\r\n"));
}

TEST_F(TexturesRegFileTest, ImportGivesBackWhatWasExported) {
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        StorePickedTexture(slot, {QStringLiteral("T \"%1\" (64x32)").arg(slot), 64, 32,
                                  QStringLiteral("texture_library/GUI/S%1").arg(slot),
                                  QStringLiteral("file%1").arg(slot)});
    const QString path = root() + QStringLiteral("/t.reg");
    ASSERT_TRUE(ExportOnlineTextures(path, links));
    const QByteArray exported = readFile(path);
    for (int slot = 0; slot < kDownloadSlots; ++slot) {
        StoreClearedSelection(slot);
        store(OnlineValueName(OnlineValue::Link, slot), QStringLiteral("http://old/x.png"));
    }

    const TexturesImport result = ImportOnlineTextures(path);
    EXPECT_TRUE(result.problems.isEmpty()) << result.Message().toStdString();
    EXPECT_EQ(result.merged, 30);
    QStringList storedLinks;
    for (int slot = 0; slot < kDownloadSlots; ++slot)
        storedLinks << value(OnlineValueName(OnlineValue::Link, slot));
    EXPECT_EQ(TexturesRegText(storedLinks), exported);
    EXPECT_EQ(storedLinks, links);
}

struct HostileCase {
    const char* name;
    QByteArray text;
    int merged;          // values stored
    const char* problem; // part of the message that explains the refusal
};
void PrintTo(const HostileCase& c, std::ostream* os) {
    *os << c.name;
}

const QByteArray kHead = "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n";

class HostileImportTest : public TexturesRegFileTest,
                          public ::testing::WithParamInterface<HostileCase> {};

TEST_P(HostileImportTest, StoresNothingOfTheBadParts) {
    const HostileCase& c = GetParam();
    store(QStringLiteral("webPath2"), QStringLiteral("texture_library/Kept"));
    const QString path = writeFile(QStringLiteral("hostile.reg"), c.text);
    const TexturesImport result = ImportOnlineTextures(path);
    EXPECT_EQ(result.merged, c.merged);
    EXPECT_TRUE(result.Message().contains(QString::fromLatin1(c.problem)))
        << result.Message().toStdString();
    EXPECT_EQ(value(QStringLiteral("webPath2")), QStringLiteral("texture_library/Kept"));
    EXPECT_EQ(value(QStringLiteral("CohPath")), QString());
    EXPECT_EQ(value(QStringLiteral("LastOnlineUpdate")), QString());
}

INSTANTIATE_TEST_SUITE_P(
    Files, HostileImportTest,
    ::testing::Values(
        HostileCase{"NoHeaderLine",
                    "[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n\"webPath2\"=\"x\"\r\n", 0,
                    "REGEDIT4"},
        HostileCase{"BinaryGarbage", QByteArray("REGEDIT4\r\n\0\xff\xfe garbage", 22), 0,
                    "REGEDIT4"},
        HostileCase{"Empty", "", 0, "REGEDIT4"},
        HostileCase{"LeavesTheDataFolder",
                    kHead +
                        "\"webName2\"=\"x\"\r\n\"webPath2\"=\"texture_library/../../../etc\"\r\n"
                        "\"webName1\"=\"fine\"\r\n",
                    1, "slot 2"},
        HostileCase{"AbsolutePath", kHead + "\"webPath2\"=\"/etc\"\r\n", 0, "slot 2"},
        HostileCase{"FileNameClimbsOut",
                    kHead + "\"webFile2\"=\"..\\\\..\\\\evil\"\r\n\"webLink0\"=\"http://a/b\"\r\n",
                    1, "outside the game's data folder"},
        HostileCase{"HugeValue",
                    kHead + "\"webName2\"=\"" + QByteArray(10000, 'n') +
                        "\"\r\n"
                        "\"webPath2\"=\"texture_library/New\"\r\n",
                    0, "too long"},
        HostileCase{"OtherSettingsAndSlots",
                    kHead + "\"CohPath\"=\"/evil\"\r\n\"LastOnlineUpdate\"=\"today\"\r\n"
                            "\"webName7\"=\"x\"\r\n\"webLink3\"=\"http://a/c\"\r\n",
                    1, "3 value(s) that are not online texture settings"},
        HostileCase{"OtherKey",
                    "REGEDIT4\r\n[HKEY_LOCAL_MACHINE\\Software\\Evil]\r\n\"webName1\"=\"x\"\r\n", 0,
                    "not online texture settings"},
        HostileCase{"BrokenLines", kHead + "webName1=x\r\n\"webName1\r\n\"webName0\"=\"ok\"\r\n", 1,
                    "2 line(s)"}),
    [](const auto& info) { return std::string(info.param.name); });

TEST_F(TexturesRegFileTest, ImportTellsThePlayerWhatHappened) {
    FakeUi ui;
    ui.openAnswers.push_back(writeFile(QStringLiteral("a.reg"), kHead + "\"webLink4\"=\"x\"\r\n"));
    AskAndImportOnlineTextures(ui);
    ASSERT_EQ(ui.messages.size(), 1);
    EXPECT_EQ(ui.messages[0].text, QStringLiteral("1 online texture setting(s) were imported."));
    EXPECT_EQ(value(QStringLiteral("webLink4")), QStringLiteral("x"));
}

TEST_F(TexturesRegFileTest, PickAndClearStoreTheFiveValuesInOrder) {
    store(QStringLiteral("webLink3"), QStringLiteral("http://keep/me.png"));
    StorePickedTexture(3, {QStringLiteral("Sign (128x64)"), 128, 64,
                           QStringLiteral("texture_library/GUI/Signs"), QStringLiteral("sign")});
    const QString stored = QString::fromUtf8(readFile(storeFile()));
    const QRegularExpression order(
        QStringLiteral("webName3.*Sign "
                       "\\(128x64\\).*webWidth3.*128.*webHeight3.*64.*webPath3.*Signs.*webFile3"),
        QRegularExpression::DotMatchesEverythingOption);
    EXPECT_TRUE(order.match(stored).hasMatch()) << stored.toStdString();

    StoreClearedSelection(3);
    EXPECT_EQ(value(QStringLiteral("webName3")), QString());
    EXPECT_EQ(value(QStringLiteral("webFile3")), QString());
    EXPECT_EQ(value(QStringLiteral("webLink3")), QStringLiteral("http://keep/me.png"));
}

} // namespace
