#include "TextureHeader.h"

#include "app/LittleEndian.h"

#include <cstring>

namespace {

constexpr qint64 kHeaderBytes = 32;
// The DDS header's height and width follow "DDS " at these distances.
constexpr qint64 kDdsHeight = 12;
constexpr qint64 kDdsWidth = 16;

bool hasMark(QByteArrayView start) {
    return start.size() >= kHeaderBytes && start[28] == '\0' && start[29] == 'T' &&
           start[30] == 'X' && start[31] == '2';
}

bool toSize(quint32 value, int& size) {
    if (value == 0 || value > 0x7FFFFFFF)
        return false;
    size = int(value);
    return true;
}

} // namespace

qint64 TextureSizeBytesNeeded(QByteArrayView start) {
    if (start.size() < kHeaderBytes || hasMark(start))
        return kHeaderBytes;
    return qint64(LittleEndian32(start, 0)) + kDdsWidth + 4;
}

bool ReadTextureSize(QByteArrayView start, int& width, int& height) {
    if (start.size() < kHeaderBytes)
        return false;
    int w = 0;
    int h = 0;
    if (hasMark(start)) {
        if (!toSize(LittleEndian32(start, 8), w) || !toSize(LittleEndian32(start, 12), h))
            return false;
    } else {
        const qint64 dds = LittleEndian32(start, 0);
        if (dds + kDdsWidth + 4 > start.size() || std::memcmp(start.data() + dds, "DDS ", 4) != 0)
            return false;
        if (!toSize(LittleEndian32(start, dds + kDdsWidth), w) ||
            !toSize(LittleEndian32(start, dds + kDdsHeight), h))
            return false;
    }
    width = w;
    height = h;
    return true;
}
