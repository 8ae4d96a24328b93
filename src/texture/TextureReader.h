#pragma once

#include <QByteArray>
#include <QImage>
#include <QString>

// Reading the game's textures back for display: a ".texture" container (its
// header, its internal name and the DDS image inside) or a bare ".dds" file
// of the library. The DDS pixel formats Kelvaris and the game use are read:
// uncompressed 32-bit and the block-compressed DXT1 (BC1), DXT3 and DXT5
// (BC3), whose blocks are decoded by libsquish. Only the top mipmap is read.

struct TexturePicture {
    QImage image;           // null when the file could not be read; see `error`
    QString name;           // the container's internal name ("" for a bare DDS)
    QString format;         // "32-bit", "DXT1", "DXT3" or "DXT5"
    int announcedWidth = 0; // the size the container announces
    int announcedHeight = 0;
    QString error; // why nothing could be shown
};

// Reads a texture or DDS file held in memory. Truncated or hostile data give
// an error text, never more memory than the picture its header declares
// (and at most 64 MiB of pixels).
TexturePicture ReadTexturePicture(const QByteArray& data);

// The same for a file; only regular files of at most 128 MiB are read.
TexturePicture ReadTextureFile(const QString& path);
