#pragma once

#include <QByteArray>
#include <QList>
#include <QObject>
#include <QProcess>
#include <QTcpServer>
#include <functional>

class QTcpSocket;

// Runs the event loop until `done` holds or the generous deadline passes;
// returns whether it holds. Never a measure of speed, only a bound on a hang.
bool WaitUntil(const std::function<bool()>& done, int deadlineMs = 30000);

// An HTTP server on 127.0.0.1 that answers with exactly the bytes a test
// sends, when the test sends them.
class ScriptedServer : public QObject {
public:
    ScriptedServer();
    quint16 port() const { return server_.serverPort(); }

    // The n-th connection once its whole request (up to the empty line) has
    // arrived; null when none came.
    QTcpSocket* waitForRequest(int n = 0);
    QByteArray request(int n = 0) const { return requests_.value(n); }
    qsizetype connectionCount() const { return connections_.size(); }

    static void send(QTcpSocket* connection, const QByteArray& bytes);
    static void close(QTcpSocket* connection);
    // Drops the connection with a TCP reset instead of an orderly close.
    static void reset(QTcpSocket* connection);

private:
    QTcpServer server_;
    QList<QTcpSocket*> connections_;
    QList<QByteArray> requests_;
};

// Debian's python3 serving a folder over HTTP on a free loopback port.
class PythonHttpServer {
public:
    explicit PythonHttpServer(const QString& folder);
    ~PythonHttpServer();
    bool started() const { return started_; }
    quint16 port() const { return port_; }

private:
    QProcess process_;
    quint16 port_ = 0;
    bool started_ = false;
};
