#pragma once

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTcpServer>
#include <QTcpSocket>
#include <QThread>
#include <functional>
#include <sys/socket.h>

// Runs the event loop until `done` holds or the generous deadline passes;
// returns whether it holds. Never a measure of speed, only a bound on a hang.
inline bool WaitUntil(const std::function<bool()>& done, int deadlineMs = 30000) {
    QDeadlineTimer deadline(deadlineMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

// An HTTP server on 127.0.0.1 that answers with exactly the bytes a test
// sends, when the test sends them.
class ScriptedServer : public QObject {
public:
    ScriptedServer() {
        server_.listen(QHostAddress::LocalHost, 0);
        connect(&server_, &QTcpServer::newConnection, this, [this] {
            while (QTcpSocket* connection = server_.nextPendingConnection()) {
                const qsizetype n = connections_.size();
                connections_.append(connection);
                requests_.append(QByteArray());
                connect(connection, &QTcpSocket::readyRead, this,
                        [this, connection, n] { requests_[n] += connection->readAll(); });
            }
        });
    }
    quint16 port() const { return server_.serverPort(); }
    qsizetype connectionCount() const { return connections_.size(); }
    QByteArray request(int n = 0) const { return requests_.value(n); }

    // The n-th connection once its whole request (up to the empty line) has
    // arrived; null when none came.
    QTcpSocket* waitForRequest(int n = 0) {
        const bool arrived = WaitUntil(
            [this, n] { return connections_.size() > n && requests_[n].contains("\r\n\r\n"); });
        return arrived ? connections_[n] : nullptr;
    }
    static void send(QTcpSocket* connection, const QByteArray& bytes) {
        connection->write(bytes);
        connection->flush();
    }
    // Sends a picture's header, then, once the client is `ready` for it,
    // `body` in a later read, and closes the n-th connection.
    bool answer(int n, const QByteArray& type, const QByteArray& body,
                const std::function<bool()>& ready) {
        QTcpSocket* connection = waitForRequest(n);
        if (!connection)
            return false;
        send(connection, "HTTP/1.1 200 OK\r\nContent-Type: image/" + type + "\r\n\r\n");
        const bool sent = WaitUntil(ready);
        send(connection, body);
        connection->disconnectFromHost();
        return sent;
    }
    // Drops the connection with a TCP reset instead of an orderly close.
    static void reset(QTcpSocket* connection) {
        const linger hard{1, 0};
        ::setsockopt(int(connection->socketDescriptor()), SOL_SOCKET, SO_LINGER, &hard,
                     sizeof hard);
        connection->abort();
    }

private:
    QTcpServer server_;
    QList<QTcpSocket*> connections_;
    QList<QByteArray> requests_;
};
