#pragma once

#include <QByteArrayView>

// The size of a game texture read from the first bytes of its ".texture"
// file: a 32-byte header (header size, payload size, width, height, three
// more numbers, a 0 byte and "TX2"), the internal name, then a DDS image
// starting at "header size". Older files lack the "TX2" mark; their size is
// taken from the DDS header instead.

// Enough leading bytes for the header, a usual internal name and the DDS
// header; files with a longer header need TextureSizeBytesNeeded().
constexpr int kTextureStartBytes = 512;

// How many leading bytes ReadTextureSize needs for this file, judged from
// the bytes given (at least the 32-byte header).
qint64 TextureSizeBytesNeeded(QByteArrayView start);

// The width and height the file holds; false when the bytes give none.
bool ReadTextureSize(QByteArrayView start, int& width, int& height);
