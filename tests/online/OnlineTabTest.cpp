#include "online/OnlineTab.h"

#include "LoopbackServer.h"
#include "app/Clock.h"
#include "common/FormFixture.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"

#include <QComboBox>
#include <QGroupBox>
#include <QLineEdit>
#include <QPushButton>

namespace {

// Two categories, the second with two textures of different sizes.
const QByteArray kCatalogue = "2\r\n\"Signs\",1\r\n"
                              "\"Sign\",128,64,\"texture_library/GUI/Signs\",\"sign\"\r\n"
                              "\"Skies\",2\r\n"
                              "\"Clouds\",512,256,\"texture_library/Sky\",\"clouds\"\r\n"
                              "\"Dawn\",1024,512,\"texture_library/Sky\",\"dawn\"\r\n";

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

    row<QPushButton>("webPick", 3)->click();
    control<QComboBox>("webCategory")->setCurrentIndex(0);
    click("webCancel");
    EXPECT_FALSE(chooserShown());
    EXPECT_EQ(slotValues(3), picked);

    row<QPushButton>("webPick", 3)->click();
    click("webClear");
    EXPECT_EQ(row<QLineEdit>("webFile", 3)->text(), QString());
    EXPECT_EQ(slotValues(3), QStringList(5, QString()));
    EXPECT_EQ(row<QLineEdit>("webURL", 3)->text(), "http://keep/me.png");
}

// The rows take what was imported, so closing the window keeps it.
TEST_F(OnlineTabTest, AnImportSurvivesTheClose) {
    choose("webImport",
           writeFile("given.reg", "REGEDIT4\r\n[HKEY_CURRENT_USER\\Software\\CohKelvaris]"
                                  "\r\n\"webLink3\"=\"http://new/3.png\"\r\n"));
    EXPECT_EQ(row<QLineEdit>("webURL", 3)->text(), "http://new/3.png");
    form->Unload();
    EXPECT_EQ(setting("webLink3"), "http://new/3.png");
}

// A randomizer start refreshes the slots once a day: it waits for the
// download, stores the day and ends; a second start that day ends at once.
TEST_F(OnlineTabTest, TheRandomizerRefreshesStoresTheDateAndEndsOnlyOnceADay) {
    const QString address = "http://127.0.0.1/sign.png";
    storeSetting(OnlineValueName(OnlineValue::Link, 1), address);
    StorePickedTexture(1, {"Sign (128x64)", 128, 64, "texture_library/GUI/Signs", "sign"});
    const auto runRandomizer = [this](const QString& lastUpdate) {
        storeSetting("LastOnlineUpdate", lastUpdate);
        form = std::make_unique<Form1>(ui, QStringList{"-randomizer"});
        wire();
        form->Form_Load();
    };
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
