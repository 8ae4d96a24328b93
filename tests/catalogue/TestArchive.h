#pragma once

#include <QByteArray>
#include <QList>
#include <QString>

// Game archives and texture files built the way the game lays them out, for
// the catalogue tests and benchmark.

struct TestArchiveEntry {
    QString name;
    QByteArray content;
    bool compressed = false;
};

// An archive: header, directory, name table, an empty slot table, then the
// entries' data (zlib streams for compressed entries).
QByteArray MakeTestArchive(const QList<TestArchiveEntry>& entries);

// A ".texture" file: the 32-byte header (without `withMark`, no "TX2" mark and
// sizes 0), an internal name, a DDS header and `payloadBytes` of pixels.
QByteArray MakeTestTexture(int width, int height, bool withMark = true, int payloadBytes = 256);

// Little-endian helpers for building hostile archives by hand.
void PutU32(QByteArray& bytes, qsizetype at, quint32 value);
