#include "TestArchive.h"

#include <QtEndian>

namespace {

// Appends little-endian 32-bit values.
void append(QByteArray& bytes, std::initializer_list<quint32> values) {
    for (quint32 value : values) {
        char raw[4];
        qToLittleEndian(value, raw);
        bytes.append(raw, 4);
    }
}

} // namespace

void PutU32(QByteArray& bytes, qsizetype at, quint32 value) {
    qToLittleEndian(value, bytes.data() + at);
}

QByteArray MakeTestArchive(const QList<TestArchiveEntry>& entries) {
    QByteArray names;
    QList<QByteArray> stored;
    for (const TestArchiveEntry& entry : entries) {
        const QByteArray name = entry.name.toUtf8() + '\0';
        append(names, {quint32(name.size())});
        names += name;
        // qCompress puts a 4-byte length before the zlib stream.
        stored.append(entry.compressed ? qCompress(entry.content).mid(4) : entry.content);
    }
    const quint32 count = quint32(entries.size());
    quint32 offset = 16 + count * 48 + 12 + quint32(names.size()) + 12; // the first data

    QByteArray bytes;
    // Marker, two version words, header size 16 and entry size 48 as 16-bit pairs.
    append(bytes, {0x123, 0x00020002, 0x00300010, count});
    for (quint32 i = 0; i < count; ++i) {
        // Marker, name index, size, timestamp, offset, 0, slot, MD5 (not checked),
        // compressed size.
        append(bytes,
               {0x3456, i, quint32(entries[i].content.size()), 0x5F000000, offset, 0, 0xFFFFFFFF});
        bytes.append(16, '\x5A');
        append(bytes, {entries[i].compressed ? quint32(stored[i].size()) : 0});
        offset += quint32(stored[i].size());
    }
    append(bytes, {0x6789, count, quint32(names.size())});
    bytes += names;
    append(bytes, {0x9ABC, 0, 0}); // an empty slot table
    for (const QByteArray& data : stored)
        bytes += data;
    return bytes;
}

QByteArray MakeTestTexture(int width, int height, bool withMark, int payloadBytes) {
    const QByteArray internalName = "texture_library/test/" + QByteArray::number(width) + ".tga";
    QByteArray bytes;
    append(bytes, {32 + quint32(internalName.size()) + 1, 128 + quint32(payloadBytes),
                   withMark ? quint32(width) : 0, withMark ? quint32(height) : 0, 0, 0, 0});
    bytes += withMark ? QByteArray("\0TX2", 4) : QByteArray(4, '\0');
    bytes += internalName + '\0';
    bytes += "DDS ";
    append(bytes, {124, 0x1007, quint32(height), quint32(width)});
    bytes.append(128 - 20, '\0');
    for (int i = 0; i < payloadBytes; ++i)
        bytes.append(char(i * 7));
    return bytes;
}
