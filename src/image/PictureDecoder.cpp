#include "PictureDecoder.h"

#include "TgaDecoder.h"
#include "app/FileRecord.h"
#include "app/LittleEndian.h"

#include <QBuffer>
#include <QImageReader>
#include <QtEndian>
#include <array>

namespace {

quint16 le16(const QByteArray& data, qsizetype at) {
    return qFromLittleEndian<quint16>(data.constData() + at);
}

// An uncompressed BMP must hold every row its header declares; Qt's reader
// would show the missing rows black.
bool bmpComplete(const QByteArray& data) {
    if (data.size() < 26)
        return false;
    const qint64 offset = LittleEndian32(data, 10);
    const quint32 headerSize = LittleEndian32(data, 14);
    qint64 width = 0, height = 0, bits = 0, compression = 0;
    if (headerSize == 12) {
        width = le16(data, 18);
        height = le16(data, 20);
        bits = le16(data, 24);
    } else {
        if (data.size() < 34)
            return false;
        width = qint32(LittleEndian32(data, 18));
        height = qint32(LittleEndian32(data, 22));
        bits = le16(data, 28);
        compression = LittleEndian32(data, 30);
    }
    if (compression != 0 && compression != 3) // run-length data end where they end
        return true;
    const qint64 rowBytes = ((qAbs(width) * bits + 31) / 32) * 4;
    return offset + rowBytes * qAbs(height) <= data.size();
}

// A JPEG must close its last scan with the end-of-image marker; without it
// the decoder pads the missing part grey.
bool jpegComplete(const QByteArray& data) {
    const qsizetype scan = data.lastIndexOf(QByteArrayView("\xFF\xDA", 2));
    return scan >= 0 && data.lastIndexOf(QByteArrayView("\xFF\xD9", 2)) > scan;
}

bool pngComplete(const QByteArray& data) {
    return data.contains("IEND");
}

// A GIF ends with its trailer byte ';' (some writers pad with zeros after it).
bool gifComplete(const QByteArray& data) {
    qsizetype end = data.size();
    while (end > 0 && data[end - 1] == '\0')
        --end;
    return end > 0 && data[end - 1] == ';';
}

bool looksComplete(const QByteArray& format, const QByteArray& data) {
    if (format == "bmp")
        return bmpComplete(data);
    if (format == "jpeg" || format == "jpg")
        return jpegComplete(data);
    if (format == "png")
        return pngComplete(data);
    if (format == "gif")
        return gifComplete(data);
    return true;
}

bool isPictureFormat(const QByteArray& format) {
    static const std::array<QByteArray, 6> kFormats = {"bmp", "jpeg", "jpg", "png", "gif", "tga"};
    return std::find(kFormats.begin(), kFormats.end(), format) != kFormats.end();
}

} // namespace

QImage DecodePicture(const QString& FileName) {
    // Only a regular file is read, and never more than the largest picture
    // could need: a FIFO or a device would block or never end.
    const std::optional<QByteArray> read = ReadRegularFile(FileName, kMaxDecodedBytes);
    if (!read || read->isEmpty())
        return {};
    const QByteArray& data = *read;

    // TGA has no signature, and Qt's reader only takes files that carry the
    // later revision's footer: a name ending in .tga goes to the TGA
    // decoder first.
    if (FileName.endsWith(QStringLiteral(".tga"), Qt::CaseInsensitive)) {
        const QImage tga = DecodeTga(data, kMaxDecodedBytes);
        if (!tga.isNull())
            return tga;
    }

    QBuffer buffer;
    buffer.setData(data);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer);
    reader.setDecideFormatFromContent(true);
    reader.setAllocationLimit(int(kMaxDecodedBytes / (1024 * 1024)));
    const QByteArray format = reader.format().toLower();
    if (!isPictureFormat(format) || !looksComplete(format, data))
        return {};
    const QSize size = reader.size();
    if (size.isValid() && qint64(size.width()) * size.height() * 4 > kMaxDecodedBytes)
        return {};
    QImage image;
    if (!reader.read(&image))
        return {};
    return image;
}
