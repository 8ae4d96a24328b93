// Feeds arbitrary bytes to the texture reader, the way a texture file in the
// game's folder (another mod's, a damaged one) reaches the previews.

#include "texture/TextureReader.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    const TexturePicture picture = ReadTexturePicture(bytes);
    // Either a picture within the budget or a reason, never neither.
    if (picture.image.isNull() == picture.error.isEmpty())
        __builtin_trap();
    if (!picture.image.isNull() &&
        qint64(picture.image.width()) * picture.image.height() * 4 > 64LL * 1024 * 1024)
        __builtin_trap();
    return 0;
}
