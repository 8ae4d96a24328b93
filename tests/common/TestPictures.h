#pragma once

#include <QByteArray>
#include <QImage>
#include <QList>

// Small pictures made by the tests themselves, in the formats Kelvaris reads.

// A smooth picture (JPEG keeps it close): red grows to the right, green
// downwards, blue is fixed.
QImage GradientImage(int width, int height, int blue = 96);

// A GIF of the picture, which must use at most 128 colours. Written with
// 8-bit codes and a clear code every 100 pixels, so no LZW table is needed.
QByteArray GifBytes(const QImage& image);

// A PNG whose header declares width x height but whose data hold one row.
QByteArray PngDeclaring(quint32 width, quint32 height);

// A TGA file: the 18-byte header, an optional colour map, the image data as
// given; no footer.
QByteArray TgaBytes(int imageType, int width, int height, int bitsPerPixel, int descriptor,
                    const QByteArray& data, const QByteArray& colourMap = {},
                    int colourMapEntryBits = 0);

// The picture's pixels row by row from the top, each as 0xRRGGBB.
QList<quint32> PixelsOf(const QImage& image);
