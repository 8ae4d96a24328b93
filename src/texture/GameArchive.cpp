#include "GameArchive.h"

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
// Compressed data is read in pieces of this size while inflating.
constexpr qint64 kInflateChunk = 1024;

quint32 u32At(const QByteArray& bytes, qint64 at) {
    return qFromLittleEndian<quint32>(bytes.constData() + at);
}

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

ArchiveDirectory failure(const QString& problem) {
    return {{}, problem};
}

// Reads the name table at `at`; returns its names or sets `error`.
QList<QString> readNames(QIODevice& device, qint64 at, qint64 fileSize, QString& error) {
    const QByteArray head = readAt(device, at, kNameTableHeaderBytes);
    if (head.isEmpty()) {
        error = QStringLiteral("is cut short: its name table is missing.");
        return {};
    }
    const quint32 count = u32At(head, 4);
    const quint32 bytes = u32At(head, 8);
    const qint64 start = at + kNameTableHeaderBytes;
    if (u32At(head, 0) != kNameTableMarker) {
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
    const QByteArray rows = readAt(device, start, bytes);
    if (rows.size() != qsizetype(bytes) && bytes != 0) {
        error = QStringLiteral("could not be read.");
        return {};
    }
    QList<QString> names;
    names.reserve(count);
    qint64 pos = 0;
    for (quint32 i = 0; i < count; ++i) {
        if (pos + 4 > rows.size()) {
            error = QStringLiteral("is damaged: name %1 runs past its table.").arg(i);
            return {};
        }
        const quint32 length = u32At(rows, pos);
        pos += 4;
        if (length == 0 || qint64(length) > rows.size() - pos) {
            error = QStringLiteral("is damaged: name %1 runs past its table.").arg(i);
            return {};
        }
        if (rows[pos + length - 1] != '\0') {
            error = QStringLiteral("is damaged: name %1 is not terminated.").arg(i);
            return {};
        }
        names.append(QString::fromUtf8(rows.constData() + pos));
        pos += length;
    }
    return names;
}

} // namespace

ArchiveDirectory ReadArchiveDirectory(QIODevice& device) {
    const qint64 fileSize = device.size();
    const QByteArray header = readAt(device, 0, kHeaderBytes);
    if (header.isEmpty() || u32At(header, 0) != kArchiveMagic)
        return failure(QStringLiteral("is not a game archive."));
    const quint16 headerBytes = u16At(header, 8);
    const quint16 entryBytes = u16At(header, 10);
    const quint32 count = u32At(header, 12);
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
    const QList<QString> names = readNames(device, headerBytes + directoryBytes, fileSize, error);
    if (!error.isEmpty())
        return failure(error);

    ArchiveDirectory result;
    result.entries.reserve(count);
    for (quint32 i = 0; i < count; ++i) {
        const qint64 at = qint64(i) * entryBytes;
        if (u32At(directory, at) != kEntryMarker)
            return failure(QStringLiteral("is damaged: entry %1 has no marker.").arg(i));
        const quint32 nameIndex = u32At(directory, at + 4);
        if (nameIndex >= quint32(names.size()))
            return failure(QStringLiteral("is damaged: entry %1 names string %2 of %3.")
                               .arg(i)
                               .arg(nameIndex)
                               .arg(names.size()));
        ArchiveEntry entry;
        entry.name = names[nameIndex];
        entry.size = u32At(directory, at + 8);
        entry.offset = u32At(directory, at + 16);
        entry.compressedSize = u32At(directory, at + 44);
        const quint32 stored = entry.compressedSize != 0 ? entry.compressedSize : entry.size;
        if (qint64(entry.offset) + stored > fileSize)
            return failure(QStringLiteral("is damaged: the data of \"%1\" runs past the end of "
                                          "the file.")
                               .arg(entry.name));
        result.entries.append(std::move(entry));
    }
    return result;
}

QByteArray ReadArchiveEntryStart(QIODevice& device, const ArchiveEntry& entry, int maxBytes,
                                 QString& error) {
    const qint64 wanted = qMin<qint64>(qMax(maxBytes, 0), entry.size);
    if (wanted == 0)
        return {};
    if (entry.compressedSize == 0) {
        QByteArray bytes = readAt(device, entry.offset, wanted);
        if (bytes.isEmpty())
            error = QStringLiteral("\"%1\" could not be read.").arg(entry.name);
        return bytes;
    }
    if (!device.seek(entry.offset)) {
        error = QStringLiteral("\"%1\" could not be read.").arg(entry.name);
        return {};
    }
    z_stream stream{};
    if (inflateInit(&stream) != Z_OK) {
        error = QStringLiteral("\"%1\" could not be inflated.").arg(entry.name);
        return {};
    }
    QByteArray out(wanted, Qt::Uninitialized);
    stream.next_out = reinterpret_cast<Bytef*>(out.data());
    stream.avail_out = uInt(wanted);
    qint64 left = entry.compressedSize;
    int status = Z_OK;
    while (stream.avail_out > 0 && status == Z_OK && left > 0) {
        const QByteArray chunk = device.read(qMin(left, kInflateChunk));
        if (chunk.isEmpty())
            break;
        left -= chunk.size();
        stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(chunk.constData()));
        stream.avail_in = uInt(chunk.size());
        while (stream.avail_in > 0 && stream.avail_out > 0 && status == Z_OK)
            status = inflate(&stream, Z_NO_FLUSH);
    }
    const qint64 produced = wanted - stream.avail_out;
    inflateEnd(&stream);
    if (status == Z_BUF_ERROR && stream.avail_out == 0)
        status = Z_OK; // the output is full, which is all that was asked
    if ((status != Z_OK && status != Z_STREAM_END) || produced < wanted) {
        error = QStringLiteral("\"%1\" is damaged: its compressed data is broken.").arg(entry.name);
        return {};
    }
    return out;
}
