#include "online/OnlineTab.h"

#include "LoopbackServer.h"
#include "app/Clock.h"
#include "common/FormFixture.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>

namespace {

// Two categories, the second with two textures of different sizes, and an empty third.
const QByteArray kCatalogue = "3\r\n\"Signs\",1\r\n"
                              "\"Sign\",128,64,\"texture_library/GUI/Signs\",\"sign\"\r\n"
                              "\"Skies\",2\r\n"
                              "\"Clouds\",512,256,\"texture_library/Sky\",\"clouds\"\r\n"
                              "\"Dawn\",1024,512,\"texture_library/Sky\",\"dawn\"\r\n"
                              "\"Nothing\",0\r\n";
const QString kDownload = "Download and Apply now";

bool isRed(const QWidget* control) {
    return control->palette().color(control->foregroundRole()) == QColor(255, 0, 0);
}

// The window with its downloads pointed at a loopback server, its clock set by
// the test, and a stand-in writer recording "<temporary file> <texture file> <bytes>".
class OnlineTabTest : public FormFixture {
protected:
    void SetUp() override {
        FormFixture::SetUp();
        writeFile("config/kelvaris/kelvaris.csv", kCatalogue);
        wire();
    }
    void wire() {
        form->SetClock([this] { return now; });
        form->Downloads().SetPort(server.port());
        form->Downloads().SetTextureApplier(
            [this](const QString& temp, int, int, const QString&, const QString& file) {
                written << temp.section(u'/', -1) + u' ' + file + u' ' + readFile(temp);
                return true;
            });
    }
    template <typename T> T* row(const char* name, int n) {
        return form->findChild<T*>(QString::fromLatin1(name) + u'_' + QString::number(n));
    }
    bool chooserShown() { return !control<QGroupBox>("webTexFrame")->isHidden(); }
    // The slot's stored name, width, height, folder and file.
    static QStringList slotValues(int n) {
        QStringList values;
        for (OnlineValue v : {OnlineValue::Name, OnlineValue::Width, OnlineValue::Height,
                              OnlineValue::Path, OnlineValue::File})
            values << setting(OnlineValueName(v, n));
        return values;
    }
    QString caption() { return control<QPushButton>("webDownload")->text(); }
    // The slot's texture chosen and its address typed, as the player does.
    void bindSlot(int n, const QString& address) {
        row<QLineEdit>("webFile", n)->setText("Sign (128x64)");
        row<QLineEdit>("webURL", n)->setText(address);
        storeSetting(OnlineValueName(OnlineValue::Link, n), address);
        StorePickedTexture(n, {"Sign (128x64)", 128, 64, "texture_library/GUI/Signs", "sign"});
    }
    // A randomizer run whose stored date of the last refresh is `lastUpdate`.
    void runRandomizer(const QString& lastUpdate) {
        storeSetting("LastOnlineUpdate", lastUpdate);
        form = std::make_unique<Form1>(ui, QStringList{"-randomizer"});
        wire();
        form->Form_Load();
    }

    ScriptedServer server;
    QStringList written;
    double now = 1000.0;
};

// The chooser's three ways out: pick (stores the texture, never the
// address), keep current (stores nothing), clear (forgets the texture).
TEST_F(OnlineTabTest, TheChooserPicksKeepsOrClearsTheSlotsTexture) {
    row<QLineEdit>("webURL", 3)->setText("http://keep/me.png");
    row<QPushButton>("webPick", 3)->click();
    EXPECT_TRUE(chooserShown());
    control<QComboBox>("webCategory")->setCurrentIndex(1); // rebuilds the texture list
    control<QComboBox>("webTexture")->setCurrentIndex(1);
    click("webPickTexture");
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(row<QLineEdit>("webFile", 3)->text(), "Dawn (1024x512)");
    const QStringList picked = {"Dawn (1024x512)", "1024", "512", "texture_library/Sky", "dawn"};
    EXPECT_EQ(slotValues(3), picked);
    EXPECT_EQ(row<QLineEdit>("webURL", 3)->text(), "http://keep/me.png");

    row<QPushButton>("webPick", 3)->click();
    control<QComboBox>("webCategory")->setCurrentIndex(2); // no texture: nothing to store
    click("webPickTexture");
    row<QPushButton>("webPick", 3)->click();
    control<QComboBox>("webCategory")->setCurrentIndex(0);
    click("webCancel");
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(slotValues(3), picked);

    row<QPushButton>("webPick", 3)->click();
    click("webClear");
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(row<QLineEdit>("webFile", 3)->text(), QString());
    EXPECT_EQ(slotValues(3), QStringList(5, QString()));
    EXPECT_EQ(row<QLineEdit>("webURL", 3)->text(), "http://keep/me.png");
}

// Slot 0 has no texture and slot 4 no address: skipped, unmarked. Slot 2's
// address is refused: red until the player types. Slot 1 downloads.
TEST_F(OnlineTabTest, TheButtonStartsAbortsOrEndsWithTheDownloadsAndMarksRefusedAddresses) {
    auto red = [this](int n) {
        return isRed(row<QLineEdit>("webURL", n)) || isRed(row<QLabel>("webLabel", n));
    };
    row<QLineEdit>("webURL", 0)->setText("http://127.0.0.1/a.png");
    row<QLineEdit>("webFile", 4)->setText("Sign");
    bindSlot(2, "https://example.invalid/picture.png");
    click("webDownload"); // nothing to download: the caption stays
    EXPECT_EQ(caption(), kDownload);
    EXPECT_FALSE(red(0) || red(4));
    EXPECT_TRUE(red(2));
    bindSlot(1, "http://127.0.0.1/sign.png");
    click("webDownload");
    EXPECT_EQ(caption(), "Abort Downloads");
    EXPECT_FALSE(row<QWidget>("webURL", 1)->isEnabled());
    ASSERT_NE(server.waitForRequest(0), nullptr);
    click("webDownload");
    EXPECT_EQ(caption(), kDownload);
    EXPECT_FALSE(form->Downloads().AnyActive());
    EXPECT_TRUE(row<QWidget>("webURL", 1)->isEnabled());
    row<QLineEdit>("webURL", 2)->setText("");
    EXPECT_FALSE(red(2));

    click("webDownload");
    ASSERT_TRUE(
        server.answer(1, "png", "picture", [&] { return form->Downloads().Slot(1).HeaderDone; }));
    ASSERT_TRUE(WaitUntil([&] { return !written.isEmpty(); }));
    EXPECT_EQ(written, QStringList{"kelvaris.tmp1.png sign picture"});
    EXPECT_EQ(caption(), kDownload);
    EXPECT_TRUE(row<QWidget>("webPick", 1)->isEnabled());
}

TEST_F(OnlineTabTest, ExportTakesTheTypedAddressesAndAnImportSurvivesTheClose) {
    storeSetting("webLink1", "http://old/1.png");
    storeSetting("webLink2", "http://old/2.png");
    form->Form_Load();
    EXPECT_EQ(row<QLineEdit>("webURL", 1)->text(), "http://old/1.png");
    row<QLineEdit>("webURL", 0)->setText("http://typed/0.png");
    ui.saveAnswers.push_back(root() + "/saved.reg");
    control<QPushButton>("webRegFile")->click(); // the addresses as typed, not as stored
    EXPECT_EQ(ui.saveRequests.value(0).proposedName, "Kelvaris Textures.reg");
    EXPECT_TRUE(readFile(root() + "/saved.reg")
                    .contains("\"webLink0\"=\"http://typed/0.png\"\r\n\"webName1"));
    ui.openAnswers.push_back(writeFile("given.reg",
                                       "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]\r\n"
                                       "\"webName3\"=\"New 3\"\r\n\"webLink0\"=\"http://new/0.png\""
                                       "\r\n\"webLink2\"=\"\"\r\n"));
    control<QPushButton>("webImport")->click();
    EXPECT_EQ(ui.messageTexts(), QStringList{"3 online texture setting(s) were imported."});
    EXPECT_EQ(row<QLineEdit>("webFile", 3)->text(), "New 3");
    EXPECT_EQ(row<QLineEdit>("webURL", 0)->text(), "http://new/0.png");
    EXPECT_EQ(row<QLineEdit>("webURL", 1)->text(), "http://old/1.png");
    EXPECT_EQ(row<QLineEdit>("webURL", 2)->text(), QString());

    form->Unload();
    ASSERT_TRUE(form->IsUnloaded());
    EXPECT_EQ(setting("webLink0"), "http://new/0.png");
    EXPECT_EQ(setting("webLink2"), QString());
}

TEST_F(OnlineTabTest, TheRandomizerRefreshesStoresTheDateAndEndsOnlyOnceADay) {
    bindSlot(1, "http://127.0.0.1/sign.png");
    runRandomizer("a day long gone");
    ASSERT_FALSE(form->IsUnloaded()); // waiting for the download
    now = 1010.0;
    ASSERT_TRUE(server.answer(0, "png", "png", [&] { return form->LastDataTime() == 1010.0; }));
    ASSERT_TRUE(WaitUntil([&] { return form->IsUnloaded(); }));
    EXPECT_EQ(written, QStringList{"kelvaris.tmp1.png sign png"});
    EXPECT_EQ(setting("LastOnlineUpdate"), ShortDateText(QDate::currentDate()));

    runRandomizer(setting("LastOnlineUpdate")); // a second run the same day
    EXPECT_TRUE(form->IsUnloaded());
    WaitUntil([] { return false; }, 100); // time for a connection that must not come
    EXPECT_EQ(server.connectionCount(), 1);
}

} // namespace
