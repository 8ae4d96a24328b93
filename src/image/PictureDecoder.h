#pragma once

#include <QImage>
#include <QString>

// The picture decoder: reads a BMP, JPEG, PNG, GIF or TGA file into an
// image. A null image means the file could not be decoded: missing,
// unreadable, of another kind, truncated, corrupt in its header, or larger
// than the decoder will allocate.
QImage DecodePicture(const QString& FileName);

// The largest decoded picture, in bytes of 32-bit pixels. A file that
// declares more (a 60000 x 60000 PNG is a few bytes on disk) is refused
// before any pixel memory is allocated.
constexpr qint64 kMaxDecodedBytes = 256LL * 1024 * 1024;
