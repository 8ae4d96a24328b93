#include "LoopbackServer.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QTcpSocket>
#include <QThread>
#include <sys/socket.h>

bool WaitUntil(const std::function<bool()>& done, int deadlineMs) {
    QDeadlineTimer deadline(deadlineMs);
    while (!done()) {
        if (deadline.hasExpired())
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

ScriptedServer::ScriptedServer() {
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

QTcpSocket* ScriptedServer::waitForRequest(int n) {
    const bool arrived = WaitUntil(
        [this, n] { return connections_.size() > n && requests_[n].contains("\r\n\r\n"); });
    return arrived ? connections_[n] : nullptr;
}

void ScriptedServer::send(QTcpSocket* connection, const QByteArray& bytes) {
    connection->write(bytes);
    connection->flush();
}

void ScriptedServer::close(QTcpSocket* connection) {
    connection->disconnectFromHost();
}

void ScriptedServer::reset(QTcpSocket* connection) {
    const linger hard{1, 0};
    ::setsockopt(int(connection->socketDescriptor()), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
    connection->abort();
}

PythonHttpServer::PythonHttpServer(const QString& folder) {
    {
        QTcpServer probe; // a port that is free now
        probe.listen(QHostAddress::LocalHost, 0);
        port_ = probe.serverPort();
    }
    process_.setProgram(QStringLiteral("python3"));
    process_.setArguments({QStringLiteral("-m"), QStringLiteral("http.server"),
                           QStringLiteral("--bind"), QStringLiteral("127.0.0.1"),
                           QStringLiteral("--directory"), folder, QString::number(port_)});
    process_.setStandardOutputFile(QProcess::nullDevice());
    process_.setStandardErrorFile(QProcess::nullDevice());
    process_.start();
    started_ = WaitUntil([this] {
        if (process_.state() == QProcess::NotRunning)
            return true;
        QTcpSocket probe;
        probe.connectToHost(QHostAddress::LocalHost, port_);
        return probe.waitForConnected(200);
    });
    started_ = started_ && process_.state() != QProcess::NotRunning;
}

PythonHttpServer::~PythonHttpServer() {
    process_.terminate();
    if (!process_.waitForFinished(5000))
        process_.kill();
    process_.waitForFinished(5000);
}
