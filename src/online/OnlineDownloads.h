#pragma once

#include "OnlineSettings.h"

#include <QByteArray>
#include <QObject>
#include <QString>
#include <array>
#include <functional>
#include <memory>

class BusyHost;
class QFile;
class QTcpSocket;
class UiServices;

// One online slot's download.
struct DownloadSlot {
    QTcpSocket* Socket = nullptr; // null when closed or when no connect was started
    QString Host;                 // as typed, a ":port" included
    QString Path;                 // sent unchanged, query included
    bool Active = false;          // from a started download until EndDownload
    QByteArray Received;          // bytes not yet consumed by ProcessResponse
    bool Parsing = false;         // ProcessResponse runs (and may be yielding)
    bool CloseWaiting = false;    // the server closed while ProcessResponse yielded
    bool HeaderDone = false;      // the header ended with an accepted type
    QByteArray ContentType;       // last content type seen, lower-cased
    std::unique_ptr<QFile> File;  // the open temporary file once HeaderDone
    QString TempFile;             // name in the work folder; "" when nothing to apply
    qint64 HeaderBytes = 0;       // header bytes consumed, for the header limit
    qint64 BodyBytes = 0;         // bytes after the header, for the body limit
};

// Up to five pictures fetched over plain HTTP at once, one per online slot,
// each saved in a temporary file of the work folder and, once no slot is
// active any more, handed to the texture applier. Everything runs on the
// user-interface thread, driven by socket notifications; nothing blocks.
//
// The Online tab starts and aborts downloads and listens to UrlRefused,
// SlotActiveChanged and Finished; Form1 does the same for the daily refresh
// and notes DataArrived for its time-out.
class OnlineDownloads : public QObject {
    Q_OBJECT
public:
    // Writes one downloaded picture as the slot's texture: loads TempFilePath
    // at Width x Height and writes it as the texture File in the game's
    // "data/" + Path folder. False when the texture could not be written;
    // without an applier no download can be written and each one reports so.
    using TextureApplier = std::function<bool(const QString& TempFilePath, int Width, int Height,
                                              const QString& Path, const QString& File)>;

    enum class StartResult {
        Skipped, // no texture chosen or no address typed (or already running)
        Refused, // the address is not "http://host/path"; UrlRefused was sent
        Started, // the slot is active
    };

    OnlineDownloads(UiServices& ui, const BusyHost& host, QObject* parent = nullptr);
    ~OnlineDownloads() override;

    void SetTextureApplier(TextureApplier applier) { applier_ = std::move(applier); }

    // Test seams: the port every slot connects to (80 unless changed) and the
    // limits past which a response is refused.
    void SetPort(quint16 port) { port_ = port; }
    void SetLimits(qint64 maxHeaderBytes, qint64 maxBodyBytes);

    // For feeding a response in tests and fuzzing without a connection: the
    // bytes are added to the slot's received data and processed as a read of
    // its connection would be. A slot that is not active ignores them.
    void ReceiveData(int Slot, const QByteArray& Bytes);

    // Starts the slot's download. WebFile and WebUrl are the texts of the
    // slot's texture box and address box.
    StartResult StartDownload(int Slot, const QString& WebFile, const QString& WebUrl);

    // Closes the slot's connection and file; what was not written is lost.
    void EndDownload(int Slot);

    // "Abort Downloads": ends every slot and deletes the temporary files,
    // applying nothing.
    void AbortDownloads();

    // Applies every finished download once no slot is active, then sends
    // Finished (storing the date of the daily refresh first in the randomizer
    // mode). Runs by itself when a connection closes.
    void ApplyDownloads();

    bool AnyActive() const;
    const DownloadSlot& Slot(int n) const { return slots_[size_t(n)]; }

Q_SIGNALS:
    // The address of the slot was refused, or its response was not a
    // picture: its address box and label turn red.
    void UrlRefused(int Slot);
    // The slot's texture box, "Pick..." button and address box are disabled
    // while it is active.
    void SlotActiveChanged(int Slot, bool Active);
    // Download data arrived; the randomizer's time-out counts from here.
    void DataArrived();
    // The downloads were applied; the download button reads "Download and
    // Apply now" again, and the randomizer run ends.
    void Finished();

private:
    // The three notifications of a connection, as the socket layer gives them.
    enum class SocketEventKind { Read, Connect, Close };
    void SocketEvent(QTcpSocket* socket, SocketEventKind event);
    void ProcessResponse(int n);
    void closed(int n);
    bool headerLine(int n, const QByteArray& line);
    bool openTempFile(int n);
    void writeBody(int n, const QByteArray& bytes);
    void refuseSlot(int n);
    void deleteTempFile(int n);
    void socketError(QTcpSocket* socket);
    void applySlot(int n);

    UiServices& ui_;
    const BusyHost& host_;
    TextureApplier applier_;
    std::array<DownloadSlot, kDownloadSlots> slots_;
    quint16 port_ = 80;
    qint64 maxHeaderBytes_;
    qint64 maxBodyBytes_;
    bool applying_ = false;
};
