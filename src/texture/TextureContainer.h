#pragma once

#include <QByteArray>
#include <QString>

// The game's ".texture" container as Kelvaris writes it: a header naming the
// picture inside, then a DDS image.

// The sizes a library entry (a DDS file) may have: at least its header, and
// far less than the largest picture the game takes.
constexpr qint64 kSmallestLibraryEntry = 128;
constexpr qint64 kLargestLibraryEntry = 64LL * 1024 * 1024;

// The four bytes of a 32-bit integer, least significant first.
QByteArray LongToString(qint32 value);

// The container header: header size, payload size, width, height, three
// zeros, 0x00 "TX2", then texPath + SaveFile + ".dds" and a 0 byte.
QByteArray TextureHeader(qint32 payloadSize, qint32 texWidth, qint32 texHeight,
                         const QString& texPath, const QString& SaveFile);

// Wraps an already converted DDS file into SavePath + SaveFile + ".texture"
// as a 1024 x 768 picture, copying its bytes unchanged. False when either
// file could not be opened or the texture not written, and when the source is
// not a regular file of a library entry's size (see above); the old texture
// then stays.
bool CopyDdsToTexture(const QString& SourceFile, const QString& SaveFile, const QString& SavePath,
                      const QString& texPath);

// A file name with no folder in it: no "/", "\\", ".." or root.
bool IsPlainFileName(const QString& name);
