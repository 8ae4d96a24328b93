#include "GameArchive.h"

#include "app/LittleEndian.h"

#include <QHash>
#include <QtEndian>
#include <zlib.h>

namespace {

constexpr quint32 kArchiveMagic = 0x123;
constexpr quint32 kEntryMarker = 0x3456;
constexpr quint32 kNameTableMarker = 0x6789;
constexpr int kHeaderBytes = 16;
constexpr int kEntryBytes = 48;
constexpr int kNameTableHeaderBytes = 12;
// The smallest name row: its length and a terminating NUL.
constexpr int kMinNameRowBytes = 5;
// Real archives hold some tens of thousands of entries; these bounds keep a
// hostile (or enormous) file from making Kelvaris read hundreds of megabytes.
constexpr qint64 kMaxDirectoryBytes = 64 * 1024 * 1024;
constexpr qint64 kMaxNameTableBytes = 64 * 1024 * 1024;
// Entries' starts are read in windows of at most this many bytes (small
// enough to stay in a core's cache), taking in every entry that lies no
// further than kGapBytes past the one before; a wider gap is skipped by a
// seek. Reading a gap of that size from the page cache costs about as much as
// one more read call, so wider gaps are not worth reading through. About
// kPlannedEntryBytes of each entry is planned for: a texture's header,
// compressed or not, fits in it.
constexpr qint64 kWindowBytes = 256 * 1024;
constexpr qint64 kGapBytes = 8 * 1024;
constexpr qint64 kPlannedEntryBytes = 2048;
// How far ahead a window looks for entries to take in.
constexpr qsizetype kMaxPlannedEntries = 4096;
// Compressed data that runs past the planned bytes is read in pieces of this
// size while inflating.
constexpr qint64 kInflateChunk = 16 * 1024;

quint16 u16At(const QByteArray& bytes, qint64 at) {
    return qFromLittleEndian<quint16>(bytes.constData() + at);
}

// Reads exactly `count` bytes at `at`, or returns an empty array.
QByteArray readAt(QIODevice& device, qint64 at, qint64 count) {
    if (count <= 0 || !device.seek(at))
        return {};
    QByteArray bytes = device.read(count);
    return bytes.size() == count ? bytes : QByteArray();
}

quint32 storedBytes(const ArchiveEntry& entry) {
    return entry.compressedSize != 0 ? entry.compressedSize : entry.size;
}

// Where each name of the table lies in its rows.
struct NameSpan {
    quint32 at = 0;
    quint32 bytes = 0;
};

// Reads the name table at `at` into `rows`; returns where its names lie, or
// sets `error`.
QList<NameSpan> readNames(QIODevice& device, qint64 at, qint64 fileSize, QByteArray& rows,
                          QString& error) {
    const QByteArray head = readAt(device, at, kNameTableHeaderBytes);
    if (head.isEmpty()) {
        error = QStringLiteral("is cut short: its name table is missing.");
        return {};
    }
    const quint32 count = LittleEndian32(head, 4);
    const quint32 bytes = LittleEndian32(head, 8);
    const qint64 start = at + kNameTableHeaderBytes;
    if (LittleEndian32(head, 0) != kNameTableMarker) {
        error = QStringLiteral("is damaged: its name table has no marker.");
        return {};
    }
    if (qint64(bytes) > fileSize - start || qint64(bytes) > kMaxNameTableBytes) {
        error = QStringLiteral("is damaged: its name table runs past the end of the file.");
        return {};
    }
    if (quint64(count) * kMinNameRowBytes > bytes) {
        error = QStringLiteral("is damaged: its name table claims %1 names in %2 bytes.")
                    .arg(count)
                    .arg(bytes);
        return {};
    }
    rows = readAt(device, start, bytes);
    if (rows.size() != qsizetype(bytes) && bytes != 0) {
        error = QStringLiteral("could not be read.");
        return {};
    }
    QList<NameSpan> names;
    names.reserve(count);
    const char* row = rows.constData();
    qint64 pos = 0;
    for (quint32 i = 0; i < count; ++i) {
        if (pos + 4 > rows.size()) {
            error = QStringLiteral("is damaged: name %1 runs past its table.").arg(i);
            return {};
        }
        const quint32 length = LittleEndian32(rows, pos);
        pos += 4;
        if (length == 0 || qint64(length) > rows.size() - pos) {
            error = QStringLiteral("is damaged: name %1 runs past its table.").arg(i);
            return {};
        }
        if (row[pos + length - 1] != '\0') {
            error = QStringLiteral("is damaged: name %1 is not terminated.").arg(i);
            return {};
        }
        // A name ends at its first NUL.
        names.append({quint32(pos), quint32(qstrnlen(row + pos, length))});
        pos += length;
    }
    return names;
}

} // namespace

ArchiveIndex ReadArchiveIndex(QIODevice& device) {
    ArchiveIndex index;
    const auto failure = [&index](const QString& problem) {
        index.entries.clear();
        index.names.clear();
        index.error = problem;
        return std::move(index);
    };
    const qint64 fileSize = device.size();
    const QByteArray header = readAt(device, 0, kHeaderBytes);
    if (header.isEmpty() || LittleEndian32(header, 0) != kArchiveMagic)
        return failure(QStringLiteral("is not a game archive."));
    const quint16 headerBytes = u16At(header, 8);
    const quint16 entryBytes = u16At(header, 10);
    const quint32 count = LittleEndian32(header, 12);
    if (headerBytes < kHeaderBytes || entryBytes < kEntryBytes)
        return failure(QStringLiteral("is damaged: its header gives impossible sizes."));
    const qint64 directoryBytes = qint64(count) * entryBytes;
    if (directoryBytes > fileSize - headerBytes || directoryBytes > kMaxDirectoryBytes)
        return failure(QStringLiteral("is damaged: its directory of %1 entries runs past the end "
                                      "of the file.")
                           .arg(count));
    const QByteArray directory =
        count == 0 ? QByteArray() : readAt(device, headerBytes, directoryBytes);
    if (directory.size() != directoryBytes)
        return failure(QStringLiteral("could not be read."));
    QString error;
    const QList<NameSpan> names =
        readNames(device, headerBytes + directoryBytes, fileSize, index.names, error);
    if (!error.isEmpty())
        return failure(error);

    index.entries.resize(count);
    for (quint32 i = 0; i < count; ++i) {
        const qint64 at = qint64(i) * entryBytes;
        if (LittleEndian32(directory, at) != kEntryMarker)
            return failure(QStringLiteral("is damaged: entry %1 has no marker.").arg(i));
        const quint32 nameIndex = LittleEndian32(directory, at + 4);
        if (nameIndex >= quint32(names.size()))
            return failure(QStringLiteral("is damaged: entry %1 names string %2 of %3.")
                               .arg(i)
                               .arg(nameIndex)
                               .arg(names.size()));
        ArchiveIndexEntry& entry = index.entries[i];
        entry.nameAt = names[nameIndex].at;
        entry.nameBytes = names[nameIndex].bytes;
        entry.size = LittleEndian32(directory, at + 8);
        entry.offset = LittleEndian32(directory, at + 16);
        entry.compressedSize = LittleEndian32(directory, at + 44);
        const quint32 stored = entry.compressedSize != 0 ? entry.compressedSize : entry.size;
        if (qint64(entry.offset) + stored > fileSize)
            return failure(QStringLiteral("is damaged: the data of \"%1\" runs past the end of "
                                          "the file.")
                               .arg(QString::fromUtf8(index.Name(entry))));
    }
    return index;
}

ArchiveDirectory ReadArchiveDirectory(QIODevice& device) {
    const ArchiveIndex index = ReadArchiveIndex(device);
    ArchiveDirectory directory;
    directory.error = index.error;
    directory.entries.reserve(index.entries.size());
    for (const ArchiveIndexEntry& entry : index.entries)
        directory.entries.append(
            {QString::fromUtf8(index.Name(entry)), entry.size, entry.offset, entry.compressedSize});
    return directory;
}

QByteArray ReadArchiveEntryStart(QIODevice& device, const ArchiveEntry& entry, int maxBytes,
                                 QString& error) {
    ArchiveStartReader reader(device, {entry});
    return reader.Start(0, maxBytes, error);
}

// The window a thread's last reader read through, kept for its next reader:
// a window is a large allocation, and fresh memory costs a page fault per
// page on first use, which for many short runs of entries cost more than
// the reading.
thread_local QByteArray spareWindow;

struct ArchiveStartReader::State {
    State(QIODevice& device, QList<ArchiveEntry> entries)
        : device(device), entries(std::move(entries)), window(std::move(spareWindow)) {
        window.resize(0); // its room is kept; what it held was another file's
    }
    ~State() {
        if (streamReady)
            inflateEnd(&stream);
        if (window.capacity() <= kWindowBytes + kInflateChunk)
            spareWindow = std::move(window);
    }

    QByteArrayView bytes(qint64 at, qint64 count);
    QByteArrayView inflateStart(qsizetype index, qint64 wanted, QString& error);

    QIODevice& device;
    const QList<ArchiveEntry> entries;
    qsizetype current = 0; // the entry being read; the next read plans from it
    QByteArray window;     // the file's bytes from windowStart on
    qint64 windowStart = 0;
    z_stream stream{};
    bool streamReady = false;
    // The entry the stream is inflating (-1 for none), what it gave so far,
    // and where its unread compressed data starts.
    qsizetype inflating = -1;
    QByteArray inflated;
    qint64 inputAt = 0;
    qint64 inputLeft = 0;
    int status = Z_OK;
};

// Up to `count` bytes of the file from `at`, fewer only where the file ends
// or cannot be read. When the window does not hold them, it is filled afresh
// from `at`, taking in the entries that follow while they lie close.
QByteArrayView ArchiveStartReader::State::bytes(qint64 at, qint64 count) {
    if (at >= windowStart && at + count <= windowStart + window.size())
        return QByteArrayView(window).sliced(at - windowStart, count);
    qint64 end = at + count;
    const qsizetype last = qMin(entries.size(), current + 1 + kMaxPlannedEntries);
    for (qsizetype j = current + 1; j < last; ++j) {
        const ArchiveEntry& next = entries[j];
        const qint64 from = next.offset;
        const qint64 to = from + qMin<qint64>(storedBytes(next), kPlannedEntryBytes);
        if (from < at)
            continue; // shares bytes with an earlier entry
        if (from > end + kGapBytes || to - at > kWindowBytes)
            break;
        end = qMax(end, to);
    }
    windowStart = at;
    window.resize(end - at);
    qint64 got = device.seek(at) ? device.read(window.data(), end - at) : -1;
    window.resize(qMax<qint64>(got, 0));
    return QByteArrayView(window).first(qMin<qint64>(count, window.size()));
}

// The entry's stream is kept open after its first bytes, so asking for more
// of the same entry next goes on from where it stopped.
QByteArrayView ArchiveStartReader::State::inflateStart(qsizetype index, qint64 wanted,
                                                       QString& error) {
    const ArchiveEntry& entry = entries[index];
    if (inflating != index) {
        inflating = -1;
        const bool ready =
            streamReady ? inflateReset(&stream) == Z_OK : inflateInit(&stream) == Z_OK;
        streamReady = streamReady || ready;
        if (!ready) {
            error = QStringLiteral("\"%1\" could not be inflated.").arg(entry.name);
            return {};
        }
        inflating = index;
        inflated.resize(0); // keeps its room for the next entry
        inputAt = entry.offset;
        inputLeft = entry.compressedSize;
        status = Z_OK;
    }
    if (inflated.size() < wanted) {
        const qint64 had = inflated.size();
        inflated.resize(wanted);
        stream.next_out = reinterpret_cast<Bytef*>(inflated.data() + had);
        stream.avail_out = uInt(wanted - had);
        qint64 piece = had == 0 ? kPlannedEntryBytes : kInflateChunk;
        while (stream.avail_out > 0 && status == Z_OK && inputLeft > 0) {
            const QByteArrayView chunk = bytes(inputAt, qMin(inputLeft, piece));
            if (chunk.isEmpty())
                break;
            stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(chunk.data()));
            stream.avail_in = uInt(chunk.size());
            while (stream.avail_in > 0 && stream.avail_out > 0 && status == Z_OK)
                status = inflate(&stream, Z_NO_FLUSH);
            // What the stream left unread is read again when it goes on.
            const qint64 used = chunk.size() - stream.avail_in;
            inputAt += used;
            inputLeft -= used;
            piece = kInflateChunk;
        }
        stream.next_in = nullptr;
        stream.avail_in = 0;
        inflated.resize(wanted - stream.avail_out);
        if (status == Z_BUF_ERROR && stream.avail_out == 0)
            status = Z_OK; // the output is full, which is all that was asked
    }
    if ((status != Z_OK && status != Z_STREAM_END) || inflated.size() < wanted) {
        inflating = -1;
        error = QStringLiteral("\"%1\" is damaged: its compressed data is broken.").arg(entry.name);
        return {};
    }
    return QByteArrayView(inflated).first(wanted);
}

ArchiveStartReader::ArchiveStartReader(QIODevice& device, QList<ArchiveEntry> entries)
    : state_(std::make_unique<State>(device, std::move(entries))) {}

ArchiveStartReader::~ArchiveStartReader() = default;

qsizetype ArchiveStartReader::Count() const {
    return state_->entries.size();
}

const ArchiveEntry& ArchiveStartReader::Entry(qsizetype index) const {
    return state_->entries[index];
}

QByteArray ArchiveStartReader::Start(qsizetype index, int maxBytes, QString& error) {
    return StartBytes(index, maxBytes, error).toByteArray();
}

QByteArrayView ArchiveStartReader::StartBytes(qsizetype index, int maxBytes, QString& error) {
    const ArchiveEntry& entry = state_->entries[index];
    const qint64 wanted = qMin<qint64>(qMax(maxBytes, 0), entry.size);
    if (wanted == 0)
        return {};
    state_->current = index;
    if (entry.compressedSize != 0)
        return state_->inflateStart(index, wanted, error);
    const QByteArrayView bytes = state_->bytes(entry.offset, wanted);
    if (bytes.size() != wanted) {
        error = QStringLiteral("\"%1\" could not be read.").arg(entry.name);
        return {};
    }
    return bytes;
}
