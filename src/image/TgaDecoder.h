#pragma once

#include <QByteArray>
#include <QImage>

// Decodes a TGA file held in memory: uncompressed or run-length encoded,
// true colour, grey or colour-mapped, with either row order, with or
// without the footer of the later TGA revision (which most TGA files, and
// those the NVIDIA tools write, lack). Null when the data are not a TGA
// image, end before the picture does, or declare more than `maxBytes` of
// 32-bit pixels.
QImage DecodeTga(const QByteArray& data, qint64 maxBytes);
