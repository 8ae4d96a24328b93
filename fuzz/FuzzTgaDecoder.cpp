// Feeds arbitrary bytes to the TGA decoder, the way a picture file chosen by
// the player reaches it.

#include "image/TgaDecoder.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

namespace {
constexpr qint64 kMaxBytes = 64 * 1024 * 1024;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const QImage image = DecodeTga(bytes, kMaxBytes);
    // A picture is only ever made within the pixel budget.
    if (!image.isNull() && qint64(image.width()) * image.height() * 4 > kMaxBytes)
        __builtin_trap();
    return 0;
}
