#pragma once

#include "LoopbackServer.h"
#include "app/BusyHost.h"
#include "common/FakeUi.h"
#include "common/TestEnvironment.h"
#include "online/OnlineDownloads.h"

#include <QSet>
#include <memory>

// Five online slots pointed at a scripted loopback server, each with a
// texture chosen, and a stand-in texture writer that records what it was
// given (the temporary file's bytes included).
class DownloadsFixture : public TestEnvironment {
protected:
    struct Applied {
        QString fileName;
        QByteArray bytes;
        int width;
        int height;
        QString path;
        QString file;
    };

    void SetUp() override;
    void TearDown() override;
    void makeDownloads(bool randomizerMode = false);

    OnlineDownloads::StartResult start(int slot, const QString& address = QStringLiteral("/p.png"));
    static QString url(const QString& path) { return QStringLiteral("http://127.0.0.1") + path; }
    QString tempPath(const QString& name) const;
    // Answers the n-th connection, the slot's, with a PNG header, then with
    // `body` in a later read, and closes it.
    void serveSlot(int slot, int connection, const QByteArray& body);

    FakeUi ui;
    std::unique_ptr<HeadlessBusy> busy;
    ScriptedServer server;
    std::unique_ptr<OnlineDownloads> downloads;
    QList<Applied> applied;
    bool applierResult = true;
    QSet<int> red;
    int finished = 0;
    int dataEvents = 0;
};
