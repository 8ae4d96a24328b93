#include "TextureReader.h"

#include "app/FileRecord.h"
#include "app/LittleEndian.h"

#include <squish.h>

namespace {

constexpr qint64 kLargestFile = 128LL * 1024 * 1024;
constexpr qint64 kLargestPicture = 64LL * 1024 * 1024; // bytes of 32-bit pixels
constexpr qsizetype kDdsHeaderBytes = 128;
constexpr qsizetype kContainerHeaderBytes = 32;
constexpr quint32 kPixelFormatFourCc = 0x4;

TexturePicture failed(const QString& error) {
    TexturePicture picture;
    picture.error = error;
    return picture;
}

// The DDS image starting at `at`.
TexturePicture readDds(const QByteArray& data, qsizetype at, TexturePicture picture) {
    if (data.size() - at < kDdsHeaderBytes || data.mid(at, 4) != "DDS ")
        return failed(QStringLiteral("The file holds no DDS image."));
    const qint64 height = LittleEndian32(data, at + 12);
    const qint64 width = LittleEndian32(data, at + 16);
    if (width <= 0 || height <= 0 || width > 16384 || height > 16384 ||
        width * height * 4 > kLargestPicture)
        return failed(QStringLiteral("The DDS image declares an impossible size (%1x%2).")
                          .arg(width)
                          .arg(height));
    const quint32 flags = LittleEndian32(data, at + 80);
    const QByteArray fourCc = data.mid(at + 84, 4);
    const char* pixels = data.constData() + at + kDdsHeaderBytes;
    const qint64 available = data.size() - at - kDdsHeaderBytes;

    // The format and the bytes it needs are known before any pixel memory is
    // taken: a short file claiming a huge picture costs nothing.
    int squishFlags = 0;
    qint64 needed = width * height * 4;
    if (flags & kPixelFormatFourCc) {
        if (fourCc == "DXT1")
            squishFlags = squish::kDxt1;
        else if (fourCc == "DXT3")
            squishFlags = squish::kDxt3;
        else if (fourCc == "DXT5")
            squishFlags = squish::kDxt5;
        else
            return failed(QStringLiteral("The DDS format \"%1\" cannot be shown.")
                              .arg(QString::fromLatin1(fourCc.toHex())));
        needed = squish::GetStorageRequirements(int(width), int(height), squishFlags);
    } else if (LittleEndian32(data, at + 88) != 32) {
        return failed(QStringLiteral("Only 32-bit uncompressed DDS images can be shown."));
    }
    if (available < needed)
        return failed(QStringLiteral("The texture is cut short."));

    QImage image(int(width), int(height), QImage::Format_RGBA8888);
    if (image.isNull())
        return failed(QStringLiteral("There is not enough memory to show the texture."));
    if (squishFlags != 0) {
        squish::DecompressImage(image.bits(), int(width), int(height), int(image.bytesPerLine()),
                                pixels, squishFlags);
        picture.format = QString::fromLatin1(fourCc);
    } else {
        // Blue, green, red, alpha in the file; red, green, blue, alpha here.
        for (int y = 0; y < height; ++y) {
            const auto* from = reinterpret_cast<const uchar*>(pixels) + qint64(y) * width * 4;
            uchar* into = image.scanLine(y);
            for (int x = 0; x < width; ++x, from += 4, into += 4) {
                into[0] = from[2];
                into[1] = from[1];
                into[2] = from[0];
                into[3] = from[3];
            }
        }
        picture.format = QStringLiteral("32-bit");
    }
    picture.image = image;
    return picture;
}

} // namespace

TexturePicture ReadTexturePicture(const QByteArray& data) {
    if (data.startsWith("DDS "))
        return readDds(data, 0, {});
    if (data.size() < kContainerHeaderBytes)
        return failed(QStringLiteral("The file is too short to be a texture."));
    TexturePicture picture;
    const qint64 headerSize = LittleEndian32(data, 0);
    if (headerSize < kContainerHeaderBytes || headerSize > data.size())
        return failed(QStringLiteral("The texture's header is damaged."));
    picture.announcedWidth = int(qMin<quint32>(LittleEndian32(data, 8), 1 << 20));
    picture.announcedHeight = int(qMin<quint32>(LittleEndian32(data, 12), 1 << 20));
    QByteArray name = data.mid(kContainerHeaderBytes, headerSize - kContainerHeaderBytes);
    if (const qsizetype end = name.indexOf('\0'); end >= 0)
        name.truncate(end);
    picture.name = QString::fromUtf8(name);
    return readDds(data, headerSize, picture);
}

TexturePicture ReadTextureFile(const QString& path) {
    const std::optional<QByteArray> data = ReadRegularFile(path, kLargestFile);
    if (!data)
        return failed(QStringLiteral("\"%1\" could not be read.").arg(path));
    return ReadTexturePicture(*data);
}
