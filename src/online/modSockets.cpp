#include "modSockets.h"

#include <QHostAddress>
#include <QTcpSocket>

namespace modSockets {

namespace {
constexpr qsizetype kMaxHostNameLength = 253;
}

bool IsPlausibleHostName(const QString& Host) {
    if (Host.isEmpty() || Host.size() > kMaxHostNameLength)
        return false;
    if (!QHostAddress(Host).isNull())
        return true;
    for (const QChar c : Host) {
        const char16_t u = c.unicode();
        const bool allowed = (u >= 'a' && u <= 'z') || (u >= 'A' && u <= 'Z') ||
                             (u >= '0' && u <= '9') || u == '-' || u == '_' || u == '.';
        if (!allowed)
            return false;
    }
    return true;
}

QTcpSocket* ConnectHost(const QString& Host, quint16 Port, QObject* parent) {
    if (!IsPlausibleHostName(Host))
        return nullptr;
    auto* socket = new QTcpSocket(parent);
    socket->connectToHost(Host, Port);
    return socket;
}

void CloseSocket(QTcpSocket*& Socket) {
    if (!Socket)
        return;
    QTcpSocket* socket = Socket;
    Socket = nullptr;
    socket->disconnect();
    socket->abort();
    socket->deleteLater();
}

void SendText(QTcpSocket* Socket, const QByteArray& Text) {
    if (Socket && !Text.isEmpty())
        Socket->write(Text);
}

QByteArray ReceiveAll(QTcpSocket* Socket) {
    return Socket ? Socket->readAll() : QByteArray();
}

} // namespace modSockets
