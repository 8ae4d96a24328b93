// Feeds arbitrary bytes to an online slot's download as the HTTP response of
// its server, cut into pieces as reads of the connection would deliver them,
// then ends the download as a closed connection (or the abort button) would.
// No connection is ever made: the slot's address carries a ":port", for which
// no socket is opened, and the bytes are handed to the slot directly.
//
// Input: byte 0 picks the slot (bits 0-2, modulo 5), makes the texture writer
// fail (bit 3) and ends with "Abort Downloads" instead of a close (bit 4);
// byte 1 gives how many piece sizes follow (modulo 8), each byte one size
// from 1 to 256; the rest is the response, cut into pieces of those sizes in
// turn (one piece when there are none).
//
// Checks that a download is only handed to the texture writer as a file of
// the work folder, and that no temporary file is left behind once the
// download has ended.

#include "ScratchFolder.h"
#include "app/BusyHost.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineSettings.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <algorithm>
#include <cstddef>
#include <cstdint>

namespace {

// Header and body limits small enough for the fuzzer's inputs to cross them.
constexpr qint64 kMaxHeaderBytes = 512;
constexpr qint64 kMaxBodyBytes = 2048;

class SilentUi : public UiServices {
public:
    MsgAnswer Message(const QString&, MsgIcon, MsgButtons) override { return MsgAnswer::Ok; }
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart&) override { return false; }
};

QString gameFolder() {
    return ScratchFolder() + QStringLiteral("/game");
}

bool anyTemporaryFile() {
    return !QDir(WorkFolder()).entryList({QStringLiteral("kelvaris.tmp*")}).isEmpty();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    static int argc = 1;
    static char name[] = "fuzz_download_response";
    static char* argv[] = {name, nullptr};
    new QCoreApplication(argc, argv); // lives as long as the process
    ScratchFolder();
    for (int n = 0; n < kDownloadSlots; ++n)
        StorePickedTexture(n, {QStringLiteral("Tex (64x32)"), 64, 32,
                               QStringLiteral("texture_library/GUI/Online"),
                               QStringLiteral("tex%1").arg(n)});
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2)
        return 0;
    const int slot = (data[0] & 7) % kDownloadSlots;
    const bool writerFails = data[0] & 8;
    const bool abort = data[0] & 16;
    const size_t sizeCount = std::min<size_t>(data[1] % 8, size - 2);
    const uint8_t* sizes = data + 2;
    const uint8_t* response = sizes + sizeCount;
    const size_t responseSize = size - 2 - sizeCount;

    SilentUi ui;
    HeadlessBusy busy;
    OnlineDownloads downloads(ui, busy);
    downloads.SetLimits(kMaxHeaderBytes, kMaxBodyBytes);
    const QString work = QFileInfo(WorkFolder()).canonicalFilePath();
    downloads.SetTextureApplier(
        [&](const QString& temp, int, int, const QString& path, const QString& file) {
            const QFileInfo info(temp);
            if (!info.isFile() || info.canonicalPath() != work)
                __builtin_trap(); // not a file of the work folder
            const QString folder = gameFolder() + QStringLiteral("/data/") + path;
            QDir().mkpath(folder);
            const QString target = folder + u'/' + file + QStringLiteral(".texture");
            QFile::remove(target);
            return !writerFails && QFile::copy(temp, target);
        });

    if (downloads.StartDownload(slot, QStringLiteral("Tex"),
                                QStringLiteral("http://fuzz.invalid:80/t.png")) !=
            OnlineDownloads::StartResult::Started ||
        downloads.Slot(slot).Socket != nullptr)
        __builtin_trap(); // the slot must start, and without a connection

    size_t pos = 0;
    for (size_t i = 0; pos < responseSize; ++i) {
        const size_t piece = sizeCount == 0 ? responseSize : size_t(sizes[i % sizeCount]) + 1;
        const size_t length = std::min(piece, responseSize - pos);
        downloads.ReceiveData(
            slot, QByteArray(reinterpret_cast<const char*>(response + pos), qsizetype(length)));
        pos += length;
    }

    if (abort) {
        downloads.AbortDownloads();
    } else {
        downloads.EndDownload(slot);
        downloads.ApplyDownloads();
    }
    if (downloads.AnyActive() || anyTemporaryFile())
        __builtin_trap(); // the download did not end, or left its file behind
    return 0;
}
