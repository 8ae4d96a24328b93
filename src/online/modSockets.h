#pragma once

#include <QByteArray>
#include <QString>

class QObject;
class QTcpSocket;

// The socket layer of the online downloads, on QTcpSocket: each connection
// reports "connected", "readyRead" and "disconnected" on the user-interface
// thread, which stand for the connect, read and close events of a download.
// A null socket plays the part of the closed socket handle.
namespace modSockets {

// Starts connecting to Host on Port without blocking; name look-up happens in
// the background. Null when Host cannot be a host name at all (a ":port"
// typed into the address, blanks, other stray characters): such a name would
// never resolve, so no look-up is made.
QTcpSocket* ConnectHost(const QString& Host, quint16 Port, QObject* parent);

// Drops the connection without further notifications and sets the caller's
// pointer to null. The socket object is deleted once control is back in the
// event loop, so this is safe from inside the socket's own notification.
void CloseSocket(QTcpSocket*& Socket);

// Queues the whole text in one write; an empty text sends nothing.
void SendText(QTcpSocket* Socket, const QByteArray& Text);

// Every byte that has arrived and not been read yet.
QByteArray ReceiveAll(QTcpSocket* Socket);

// True when Host could name a machine: an IPv4 or IPv6 address, or a DNS
// name of letters, digits, "-", "_" and "." of at most 253 characters.
bool IsPlausibleHostName(const QString& Host);

} // namespace modSockets
