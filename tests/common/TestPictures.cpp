#include "TestPictures.h"

#include "texture/ScreenTargets.h"

#include <QtEndian>

namespace {

quint32 u32(const QByteArray& bytes, qsizetype at) {
    return bytes.size() >= at + 4 ? qFromLittleEndian<quint32>(bytes.constData() + at) : 0;
}

void put16(QByteArray& bytes, int value) {
    bytes += char(value & 0xFF);
    bytes += char((value >> 8) & 0xFF);
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

TextureFile::TextureFile(const QByteArray& bytes)
    : headerSize(u32(bytes, 0)), payloadSize(u32(bytes, 4)), width(u32(bytes, 8)),
      height(u32(bytes, 12)), name(bytes.mid(32, qsizetype(headerSize) - 33)),
      dds(bytes.mid(headerSize, payloadSize)) {}

quint32 TextureFile::pixel(int x, int y) const {
    return u32(dds, 128 + (qsizetype(y) * u32(dds, 16) + x) * 4);
}

QImage FilledImage(int width, int height, QRgb left, QRgb right) {
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(right);
    for (int y = 0; y < height; ++y)
        for (int x = 0; x < width / 2; ++x)
            image.setPixel(x, y, left);
    return image;
}

QString ScreenTextureFile(const QString& game, const ScreenTarget& screen) {
    return game + QLatin1String(screen.folder) + QLatin1String(screen.file) + ".texture";
}
