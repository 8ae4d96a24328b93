#include "OnlineDownloads.h"

#include "DownloadUrl.h"
#include "app/BusyHost.h"
#include "app/Clock.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"
#include "modSockets.h"

#include <QCoreApplication>
#include <QDate>
#include <QFile>
#include <QPointer>
#include <QTcpSocket>

namespace {

// A response whose header runs longer than this, or whose body grows past
// the second limit, is not a texture: the slot is refused.
constexpr qint64 kMaxHeaderBytes = 64 * 1024;
constexpr qint64 kMaxBodyBytes = 64 * 1024 * 1024;

const QByteArray kCrLf = QByteArrayLiteral("\r\n");

QString workFile(const QString& name) {
    return WorkFolder() + u'/' + name;
}

} // namespace

OnlineDownloads::OnlineDownloads(UiServices& ui, const BusyHost& host, QObject* parent)
    : QObject(parent), ui_(ui), host_(host), maxHeaderBytes_(kMaxHeaderBytes),
      maxBodyBytes_(kMaxBodyBytes) {}

OnlineDownloads::~OnlineDownloads() {
    // The sockets are children of this object; they must not report to it
    // while it is being torn down.
    for (DownloadSlot& s : slots_)
        modSockets::CloseSocket(s.Socket);
}

void OnlineDownloads::SetLimits(qint64 maxHeaderBytes, qint64 maxBodyBytes) {
    maxHeaderBytes_ = maxHeaderBytes;
    maxBodyBytes_ = maxBodyBytes;
}

void OnlineDownloads::ReceiveData(int Slot, const QByteArray& Bytes) {
    if (Slot < 0 || Slot >= kDownloadSlots)
        return;
    DownloadSlot& s = slots_[size_t(Slot)];
    if (!s.Active)
        return;
    s.Received += Bytes;
    if (!s.Parsing)
        ProcessResponse(Slot);
}

bool OnlineDownloads::AnyActive() const {
    for (const DownloadSlot& s : slots_)
        if (s.Active)
            return true;
    return false;
}

OnlineDownloads::StartResult OnlineDownloads::StartDownload(int Slot, const QString& WebFile,
                                                            const QString& WebUrl) {
    if (Slot < 0 || Slot >= kDownloadSlots || WebFile.isEmpty() || WebUrl.isEmpty())
        return StartResult::Skipped;
    DownloadSlot& s = slots_[size_t(Slot)];
    if (s.Active || s.Parsing) // its controls are disabled while it runs
        return StartResult::Skipped;
    const std::optional<DownloadTarget> target = SplitDownloadUrl(WebUrl);
    if (!target) {
        Q_EMIT UrlRefused(Slot);
        return StartResult::Refused;
    }
    s.Host = target->Host;
    s.Path = target->Path;
    s.Received.clear();
    s.CloseWaiting = false;
    s.HeaderBytes = 0;
    s.BodyBytes = 0;
    s.Active = true;
    Q_EMIT SlotActiveChanged(Slot, true);

    // A name that cannot resolve leaves the slot active with no socket until
    // it is ended from outside (the abort button, the randomizer's time-out).
    QTcpSocket* socket = modSockets::ConnectHost(s.Host, port_, this);
    s.Socket = socket;
    if (!socket)
        return StartResult::Started;
    connect(socket, &QTcpSocket::connected, this,
            [this, socket] { SocketEvent(socket, SocketEventKind::Connect); });
    connect(socket, &QTcpSocket::readyRead, this,
            [this, socket] { SocketEvent(socket, SocketEventKind::Read); });
    connect(socket, &QTcpSocket::disconnected, this,
            [this, socket] { SocketEvent(socket, SocketEventKind::Close); });
    connect(socket, &QTcpSocket::errorOccurred, this, [this, socket] { socketError(socket); });
    return StartResult::Started;
}

void OnlineDownloads::socketError(QTcpSocket* socket) {
    // Errors are not reported, as a failed connect is not: the slot waits to
    // be ended from outside. A name that did not resolve leaves it with no
    // socket at all.
    if (socket->error() != QAbstractSocket::HostNotFoundError)
        return;
    for (DownloadSlot& s : slots_)
        if (s.Socket == socket)
            modSockets::CloseSocket(s.Socket);
}

void OnlineDownloads::SocketEvent(QTcpSocket* socket, SocketEventKind event) {
    for (int n = 0; n < kDownloadSlots; ++n) {
        DownloadSlot& s = slots_[size_t(n)];
        if (!socket || s.Socket != socket)
            continue;
        switch (event) {
        case SocketEventKind::Read: {
            QPointer<OnlineDownloads> alive(this);
            QPointer<QTcpSocket> open(socket);
            // Qt announces new data once while this handler runs; what arrives
            // while the response is cut into lines waits in the socket and is
            // taken here, as a further read would take it.
            do {
                s.Received += modSockets::ReceiveAll(socket);
                if (!s.Parsing)
                    ProcessResponse(n);
                else if (s.Received.size() > maxHeaderBytes_ + maxBodyBytes_)
                    refuseSlot(n);
                if (!alive)
                    return;
                Q_EMIT DataArrived();
            } while (!s.Parsing && open && s.Socket == socket && socket->bytesAvailable() > 0);
            if (s.CloseWaiting && !s.Parsing) {
                s.CloseWaiting = false;
                closed(n);
            }
            return;
        }
        case SocketEventKind::Connect:
            modSockets::SendText(socket, DownloadRequest({s.Host, s.Path}));
            s.ContentType.clear();
            s.HeaderDone = false;
            return;
        case SocketEventKind::Close:
            // Qt has read everything before it reports the close. A close
            // that arrives while the response is being cut into lines waits
            // until that is done, so the whole read is handled first.
            if (s.Parsing) {
                s.CloseWaiting = true;
            } else if (socket->bytesAvailable() > 0) {
                s.CloseWaiting = true;
                SocketEvent(socket, SocketEventKind::Read);
            } else {
                closed(n);
            }
            return;
        }
    }
}

void OnlineDownloads::closed(int n) {
    EndDownload(n);
    ApplyDownloads();
}

void OnlineDownloads::ProcessResponse(int n) {
    DownloadSlot& s = slots_[size_t(n)];
    s.Parsing = true;
    if (s.HeaderDone) {
        writeBody(n, std::exchange(s.Received, {}));
        s.Parsing = false;
        return;
    }

    // Lines are cut at each CR LF until none is left, the header's end
    // included: lines that came in the same read after the empty line are
    // cut and dropped as well, and only the bytes after the last CR LF wait
    // for the next read. Between lines other events run, and reads for this
    // slot only add to Received. A slot ended meanwhile from outside (the
    // abort button, the time-out) stops the cutting.
    QPointer<OnlineDownloads> alive(this);
    qsizetype pos = 0;
    while (s.Active) {
        const qsizetype end = s.Received.indexOf(kCrLf, pos);
        if (end < 0)
            break;
        const QByteArray line = s.Received.mid(pos, end - pos);
        pos = end + kCrLf.size();
        if (!headerLine(n, line))
            break;
        QCoreApplication::processEvents();
        if (!alive)
            return;
    }
    if (s.Active) {
        s.Received.remove(0, pos);
        if (!s.HeaderDone && s.HeaderBytes + s.Received.size() > maxHeaderBytes_)
            refuseSlot(n); // a header with no end in sight
    } else {
        s.Received.clear();
    }
    s.Parsing = false;
}

bool OnlineDownloads::headerLine(int n, const QByteArray& line) {
    DownloadSlot& s = slots_[size_t(n)];
    (s.HeaderDone ? s.BodyBytes : s.HeaderBytes) += line.size() + kCrLf.size();
    if (s.HeaderBytes > maxHeaderBytes_ || s.BodyBytes > maxBodyBytes_) {
        refuseSlot(n);
        return false;
    }
    if (line.isEmpty()) {
        if (!IsAcceptedImageType(s.ContentType)) {
            Q_EMIT UrlRefused(n);
            EndDownload(n);
            return false;
        }
        if (!openTempFile(n)) {
            refuseSlot(n);
            return false;
        }
        return true;
    }
    if (std::optional<QByteArray> type = ContentTypeOfLine(line))
        s.ContentType = *type;
    return true;
}

bool OnlineDownloads::openTempFile(int n) {
    DownloadSlot& s = slots_[size_t(n)];
    s.File.reset();
    // A second end of header in the same read opens the file again, under
    // the name of the type it names now: the first one is not left behind.
    const QString name = DownloadTempFileName(n, s.ContentType);
    if (!s.TempFile.isEmpty() && s.TempFile != name)
        QFile::remove(workFile(s.TempFile));
    s.TempFile = name;
    auto file = std::make_unique<QFile>(workFile(s.TempFile));
    if (!file->open(QIODevice::WriteOnly | QIODevice::Truncate))
        return false;
    s.File = std::move(file);
    s.HeaderDone = true;
    return true;
}

void OnlineDownloads::writeBody(int n, const QByteArray& bytes) {
    DownloadSlot& s = slots_[size_t(n)];
    s.BodyBytes += bytes.size();
    if (s.BodyBytes > maxBodyBytes_) {
        refuseSlot(n);
        return;
    }
    if (s.File)
        s.File->write(bytes);
}

void OnlineDownloads::refuseSlot(int n) {
    Q_EMIT UrlRefused(n);
    EndDownload(n);
    deleteTempFile(n);
}

void OnlineDownloads::deleteTempFile(int n) {
    DownloadSlot& s = slots_[size_t(n)];
    if (s.TempFile.isEmpty())
        return;
    QFile::remove(workFile(s.TempFile));
    s.TempFile.clear();
}

void OnlineDownloads::EndDownload(int Slot) {
    if (Slot < 0 || Slot >= kDownloadSlots)
        return;
    DownloadSlot& s = slots_[size_t(Slot)];
    if (!s.Active)
        return;
    modSockets::CloseSocket(s.Socket);
    s.File.reset(); // bytes still in Received are not written
    s.CloseWaiting = false;
    s.Active = false;
    Q_EMIT SlotActiveChanged(Slot, false);
}

void OnlineDownloads::AbortDownloads() {
    for (int n = 0; n < kDownloadSlots; ++n) {
        EndDownload(n);
        // A temporary file that is already gone keeps its name.
        DownloadSlot& s = slots_[size_t(n)];
        if (!s.TempFile.isEmpty() && QFile::exists(workFile(s.TempFile)))
            deleteTempFile(n);
    }
}

void OnlineDownloads::ApplyDownloads() {
    if (applying_ || AnyActive())
        return;
    applying_ = true;
    for (int n = 0; n < kDownloadSlots; ++n)
        if (!slots_[size_t(n)].TempFile.isEmpty())
            applySlot(n);
    applying_ = false;

    if (host_.RandomizerMode())
        modRegistry::SetValue(kSettingsKey, QStringLiteral("LastOnlineUpdate"),
                              ShortDateText(QDate::currentDate()));
    Q_EMIT Finished();
}

void OnlineDownloads::applySlot(int n) {
    DownloadSlot& s = slots_[size_t(n)];
    const QString tempPath = workFile(s.TempFile);
    const OnlineSlotTarget target = ReadSlotTarget(n);
    if (!IsContainedTarget(target)) {
        ui_.Message(QStringLiteral("The texture chosen for online slot %1 does not lie inside the "
                                   "game's data folder, so its download was not applied.")
                        .arg(n),
                    MsgIcon::Exclamation);
    } else if (!applier_ ||
               !applier_(tempPath, target.Width, target.Height, target.Path, target.File)) {
        ui_.Message(QStringLiteral("Error writing image. Please check file permissions."),
                    MsgIcon::Exclamation);
    }
    QFile::remove(tempPath);
    s.TempFile.clear();
}
