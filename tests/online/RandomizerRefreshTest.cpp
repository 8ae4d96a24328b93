#include "LoopbackServer.h"
#include "app/Clock.h"
#include "app/Form1.h"
#include "app/modRegistry.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"

#include <QFileInfo>
#include <QTcpSocket>

namespace {

// The randomizer run's daily refresh of the online textures against a
// loopback server, with a stand-in texture writer.
class RandomizerRefreshTest : public TestEnvironment {
protected:
    void SetUp() override {
        TestEnvironment::SetUp();
        StorePickedTexture(1, {QStringLiteral("Sign (64x64)"), 64, 64,
                               QStringLiteral("texture_library/GUI"), QStringLiteral("sign")});
        modRegistry::SetValue(kSettingsKey, QStringLiteral("webLink1"),
                              QStringLiteral("http://127.0.0.1/sign.png"));
        modRegistry::SetValue(kSettingsKey, QStringLiteral("LastOnlineUpdate"),
                              QStringLiteral("a day long gone"));
        form = std::make_unique<Form1>(ui, QStringList{QStringLiteral("-randomizer")});
        form->SetClock([this] { return now; });
        form->Downloads().SetPort(server.port());
        form->Downloads().SetTextureApplier(
            [this](const QString& file, int, int, const QString&, const QString& name) {
                written << QFileInfo(file).fileName() + u' ' + name;
                return true;
            });
    }
    static QString lastUpdate() {
        return modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastOnlineUpdate"));
    }

    FakeUi ui;
    ScriptedServer server;
    std::unique_ptr<Form1> form;
    QStringList written;
    double now = 1000.0;
};

TEST_F(RandomizerRefreshTest, RefreshesStoresTheDateAndEnds) {
    form->Form_Load();
    ASSERT_FALSE(form->IsUnloaded()); // waiting for the download
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    now = 1010.0;
    ScriptedServer::send(connection, "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n");
    ASSERT_TRUE(WaitUntil([&] { return form->Downloads().Slot(1).HeaderDone; }));
    EXPECT_EQ(form->LastDataTime(), 1010.0);
    ScriptedServer::send(connection, "png");
    ScriptedServer::close(connection);
    ASSERT_TRUE(WaitUntil([&] { return form->IsUnloaded(); }));
    EXPECT_EQ(written, QStringList{QStringLiteral("kelvaris.tmp1.png sign")});
    EXPECT_EQ(lastUpdate(), ShortDateText(QDate::currentDate()));
}

TEST_F(RandomizerRefreshTest, AStalledServerIsGivenUpAfterThirtySilentSeconds) {
    form->Form_Load();
    QTcpSocket* connection = server.waitForRequest();
    ASSERT_NE(connection, nullptr);
    now = 1020.0;
    ScriptedServer::send(connection, "HTTP/1.1 200 OK\r\n"); // then nothing more
    ASSERT_TRUE(WaitUntil([&] { return form->LastDataTime() == 1020.0; }));
    now = 1045.0; // 45 seconds after the start, 25 after the data
    form->rndTimeout_Timer();
    EXPECT_FALSE(form->IsUnloaded());
    now = 1050.5;
    form->rndTimeout_Timer();
    EXPECT_TRUE(form->IsUnloaded());
    EXPECT_FALSE(form->Downloads().AnyActive());
    EXPECT_TRUE(written.isEmpty());
    EXPECT_EQ(lastUpdate(), QStringLiteral("a day long gone"));
}

TEST_F(RandomizerRefreshTest, TodaysRefreshDoneEndsAtOnce) {
    modRegistry::SetValue(kSettingsKey, QStringLiteral("LastOnlineUpdate"),
                          ShortDateText(QDate::currentDate()));
    form->Form_Load();
    EXPECT_TRUE(form->IsUnloaded());
    EXPECT_FALSE(form->Downloads().AnyActive());
    WaitUntil([] { return false; }, 100);
    EXPECT_EQ(server.connectionCount(), 0);
}

} // namespace
