#include "TestPictures.h"

#include <QBuffer>

namespace {

void put16(QByteArray& bytes, int value) {
    bytes += char(value & 0xFF);
    bytes += char((value >> 8) & 0xFF);
}

void put32be(QByteArray& bytes, quint32 value) {
    for (int shift = 24; shift >= 0; shift -= 8)
        bytes += char((value >> shift) & 0xFF);
}

quint32 crc32(const QByteArray& bytes) {
    quint32 crc = 0xFFFFFFFFu;
    for (char c : bytes) {
        crc ^= quint8(c);
        for (int k = 0; k < 8; ++k)
            crc = (crc >> 1) ^ (0xEDB88320u & (0u - (crc & 1u)));
    }
    return ~crc;
}

void pngChunk(QByteArray& png, const char* type, const QByteArray& data) {
    put32be(png, quint32(data.size()));
    const QByteArray body = QByteArray(type) + data;
    png += body;
    put32be(png, crc32(body));
}

} // namespace

QImage GradientImage(int width, int height, int blue) {
    QImage image(width, height, QImage::Format_RGB32);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width; ++x)
            image.setPixel(x, y,
                           qRgb(width > 1 ? x * 255 / (width - 1) : 0,
                                height > 1 ? y * 255 / (height - 1) : 0, blue));
    return image;
}

QByteArray GifBytes(const QImage& image) {
    QList<QRgb> palette;
    QByteArray indices;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            const QRgb colour = image.pixel(x, y) | 0xFF000000u;
            qsizetype index = palette.indexOf(colour);
            if (index < 0) {
                palette.append(colour);
                index = palette.size() - 1;
            }
            indices += char(index);
        }
    }
    palette.resize(128, 0xFF000000u);

    QByteArray gif("GIF89a");
    put16(gif, image.width());
    put16(gif, image.height());
    gif += char(0xF6); // global colour table of 128 entries
    gif += char(0);
    gif += char(0);
    for (QRgb colour : palette) {
        gif += char(qRed(colour));
        gif += char(qGreen(colour));
        gif += char(qBlue(colour));
    }
    gif += ',';
    put16(gif, 0);
    put16(gif, 0);
    put16(gif, image.width());
    put16(gif, image.height());
    gif += char(0);
    gif += char(7); // minimum code size: codes are 8 bits wide

    QByteArray codes;
    for (qsizetype i = 0; i < indices.size(); ++i) {
        if (i % 100 == 0)
            codes += char(128); // clear
        codes += indices[i];
    }
    codes += char(129); // end of information
    for (qsizetype i = 0; i < codes.size(); i += 255) {
        const QByteArray block = codes.mid(i, 255);
        gif += char(block.size());
        gif += block;
    }
    gif += char(0);
    gif += ';';
    return gif;
}

QByteArray PngDeclaring(quint32 width, quint32 height) {
    QByteArray png("\x89PNG\r\n\x1A\n", 8);
    QByteArray header;
    put32be(header, width);
    put32be(header, height);
    header += char(8); // bit depth
    header += char(2); // RGB
    header += QByteArray(3, '\0');
    pngChunk(png, "IHDR", header);
    // A stored zlib block holding one filtered row start: data that ends long
    // before the declared picture does.
    pngChunk(png, "IDAT", QByteArray("\x78\x01\x01\x01\x00\xFE\xFF\x00\x00\x01\x00\x01", 12));
    pngChunk(png, "IEND", {});
    return png;
}

QByteArray TgaBytes(int imageType, int width, int height, int bitsPerPixel, int descriptor,
                    const QByteArray& data, const QByteArray& colourMap, int colourMapEntryBits) {
    QByteArray tga;
    tga += char(0); // identification length
    tga += char(colourMap.isEmpty() ? 0 : 1);
    tga += char(imageType);
    put16(tga, 0); // first colour-map entry
    put16(tga, colourMapEntryBits ? int(colourMap.size() * 8 / colourMapEntryBits) : 0);
    tga += char(colourMapEntryBits);
    put16(tga, 0);
    put16(tga, 0);
    put16(tga, width);
    put16(tga, height);
    tga += char(bitsPerPixel);
    tga += char(descriptor);
    tga += colourMap;
    tga += data;
    return tga;
}

QList<quint32> PixelsOf(const QImage& image) {
    QList<quint32> pixels;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            pixels.append(image.pixel(x, y) & 0xFFFFFFu);
    return pixels;
}
