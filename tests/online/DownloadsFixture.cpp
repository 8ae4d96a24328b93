#include "DownloadsFixture.h"

#include "app/PathUtils.h"
#include "online/OnlineSettings.h"

#include <QFile>
#include <QFileInfo>
#include <QTcpSocket>

void DownloadsFixture::SetUp() {
    TestEnvironment::SetUp();
    for (int n = 0; n < kDownloadSlots; ++n)
        StorePickedTexture(n, {QStringLiteral("Tex (256x128)"), 256, 128,
                               QStringLiteral("texture_library/GUI/Online"),
                               QStringLiteral("tex") + QString::number(n)});
    makeDownloads();
}

void DownloadsFixture::TearDown() {
    downloads.reset();
    TestEnvironment::TearDown();
}

void DownloadsFixture::makeDownloads(bool randomizerMode) {
    downloads.reset();
    busy = std::make_unique<HeadlessBusy>(randomizerMode);
    downloads = std::make_unique<OnlineDownloads>(ui, *busy);
    downloads->SetPort(server.port());
    downloads->SetTextureApplier([this](const QString& fileName, int width, int height,
                                        const QString& path, const QString& file) {
        QFile temp(fileName);
        temp.open(QIODevice::ReadOnly);
        applied.append({QFileInfo(fileName).fileName(), temp.readAll(), width, height, path, file});
        return applierResult;
    });
    QObject::connect(downloads.get(), &OnlineDownloads::UrlRefused, downloads.get(),
                     [this](int slot) { red.insert(slot); });
    QObject::connect(downloads.get(), &OnlineDownloads::Finished, downloads.get(),
                     [this] { ++finished; });
    QObject::connect(downloads.get(), &OnlineDownloads::DataArrived, downloads.get(),
                     [this] { ++dataEvents; });
}

OnlineDownloads::StartResult DownloadsFixture::start(int slot, const QString& address) {
    return downloads->StartDownload(slot, QStringLiteral("Tex (256x128)"), url(address));
}

QString DownloadsFixture::tempPath(const QString& name) const {
    return WorkFolder() + u'/' + name;
}

void DownloadsFixture::serveSlot(int slot, int connection, const QByteArray& body) {
    QTcpSocket* socket = server.waitForRequest(connection);
    ASSERT_NE(socket, nullptr);
    ScriptedServer::send(socket, "HTTP/1.1 200 OK\r\nContent-Type: image/png\r\n\r\n");
    ASSERT_TRUE(WaitUntil([&] { return downloads->Slot(slot).HeaderDone; }));
    ScriptedServer::send(socket, body);
    ScriptedServer::close(socket);
}
