#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>
#include <QString>

struct ScreenTarget;

// Small pictures made by the tests themselves, in the formats Kelvaris reads.

// A smooth picture (JPEG keeps it close): red grows to the right, green
// downwards, blue is fixed.
QImage GradientImage(int width, int height, int blue = 96);

// A TGA file: the 18-byte header, an optional colour map, the image data as
// given; no footer.
QByteArray TgaBytes(int imageType, int width, int height, int bitsPerPixel, int descriptor,
                    const QByteArray& data, const QByteArray& colourMap = {},
                    int colourMapEntryBits = 0);

// The picture's pixels row by row from the top, each as 0xRRGGBB.
QList<quint32> PixelsOf(const QImage& image);

// A ".texture" file as Kelvaris writes it: the header's sizes, the internal
// name after it, and the DDS image.
struct TextureFile {
    explicit TextureFile(const QByteArray& bytes);
    quint32 headerSize, payloadSize, width, height; // width and height as announced
    QByteArray name;
    QByteArray dds;
    // A pixel of the uncompressed DDS image, rows from the top, as 0xAARRGGBB.
    quint32 pixel(int x, int y) const;
};

// Where a screen's texture lies below the game folder.
QString ScreenTextureFile(const QString& game, const ScreenTarget& screen);

// A picture of one colour, or of `left` on its left half and `right` on the
// rest.
QImage FilledImage(int width, int height, QRgb left, QRgb right);
inline QImage FilledImage(int width, int height, QRgb colour) {
    return FilledImage(width, height, colour, colour);
}
