#include "TestArchive.h"

#include <QtEndian>

namespace {

void appendU32(QByteArray& bytes, quint32 value) {
    char raw[4];
    qToLittleEndian(value, raw);
    bytes.append(raw, 4);
}

void appendU16(QByteArray& bytes, quint16 value) {
    char raw[2];
    qToLittleEndian(value, raw);
    bytes.append(raw, 2);
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
        appendU32(names, quint32(name.size()));
        names += name;
        // qCompress puts a 4-byte length before the zlib stream.
        stored.append(entry.compressed ? qCompress(entry.content).mid(4) : entry.content);
    }
    const quint32 count = quint32(entries.size());
    const quint32 dataStart = 16 + count * 48 + 12 + quint32(names.size()) + 12;

    QByteArray bytes;
    appendU32(bytes, 0x123);
    appendU16(bytes, 2);
    appendU16(bytes, 2);
    appendU16(bytes, 16);
    appendU16(bytes, 48);
    appendU32(bytes, count);
    quint32 offset = dataStart;
    for (quint32 i = 0; i < count; ++i) {
        appendU32(bytes, 0x3456);
        appendU32(bytes, i);
        appendU32(bytes, quint32(entries[i].content.size()));
        appendU32(bytes, 0x5F000000); // timestamp
        appendU32(bytes, offset);
        appendU32(bytes, 0);
        appendU32(bytes, 0xFFFFFFFF);
        bytes.append(16, '\x5A'); // MD5, not checked
        appendU32(bytes, entries[i].compressed ? quint32(stored[i].size()) : 0);
        offset += quint32(stored[i].size());
    }
    appendU32(bytes, 0x6789);
    appendU32(bytes, count);
    appendU32(bytes, quint32(names.size()));
    bytes += names;
    appendU32(bytes, 0x9ABC);
    appendU32(bytes, 0);
    appendU32(bytes, 0);
    for (const QByteArray& data : stored)
        bytes += data;
    return bytes;
}

QByteArray MakeTestTexture(int width, int height, bool withMark, int payloadBytes) {
    const QByteArray internalName = "texture_library/test/" + QByteArray::number(width) + ".tga";
    const quint32 headerSize = 32 + quint32(internalName.size()) + 1;
    QByteArray bytes;
    appendU32(bytes, headerSize);
    appendU32(bytes, 128 + quint32(payloadBytes));
    appendU32(bytes, withMark ? quint32(width) : 0);
    appendU32(bytes, withMark ? quint32(height) : 0);
    appendU32(bytes, 0);
    appendU32(bytes, 0);
    appendU32(bytes, 0);
    bytes += withMark ? QByteArray("\0TX2", 4) : QByteArray(4, '\0');
    bytes += internalName + '\0';
    bytes += "DDS ";
    appendU32(bytes, 124);
    appendU32(bytes, 0x1007);
    appendU32(bytes, quint32(height));
    appendU32(bytes, quint32(width));
    bytes.append(128 - 20, '\0');
    for (int i = 0; i < payloadBytes; ++i)
        bytes.append(char(i * 7));
    return bytes;
}
