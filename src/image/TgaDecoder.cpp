#include "TgaDecoder.h"

#include <cstring>

// stb_image, limited to its TGA reader and to decoding from memory; its
// functions stay private to this file.
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_TGA
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_HDR
#define STBI_MAX_DIMENSIONS 32768
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC diagnostic ignored "-Wunused-parameter"
#pragma GCC diagnostic ignored "-Wsign-compare"
#pragma GCC diagnostic ignored "-Wimplicit-fallthrough"
#pragma GCC diagnostic ignored "-Wmissing-field-initializers"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

namespace {

// Feeds stb from memory through its callbacks, so a decoder that asks for
// bytes past the end (a truncated file, which stb would fill with zeros)
// is noticed.
struct MemorySource {
    const QByteArray& data;
    qsizetype position = 0;
    bool ranOut = false;
};

int readBytes(void* user, char* into, int size) {
    auto* source = static_cast<MemorySource*>(user);
    const qsizetype left = source->data.size() - source->position;
    const int count = int(qMin<qsizetype>(left, size));
    if (count <= 0) {
        source->ranOut = true;
        return 0;
    }
    std::memcpy(into, source->data.constData() + source->position, size_t(count));
    source->position += count;
    return count;
}

void skipBytes(void* user, int count) {
    auto* source = static_cast<MemorySource*>(user);
    source->position = qBound<qsizetype>(0, source->position + count, source->data.size());
}

int atEnd(void* user) {
    auto* source = static_cast<MemorySource*>(user);
    return source->position >= source->data.size() ? 1 : 0;
}

// Whether the data can hold the picture the header declares, which is
// known before any pixel memory is taken: uncompressed pixels all stand in
// the file, and a run-length packet gives at most 128 pixels for one byte
// and one pixel value. A few hundred bytes claiming a huge picture are
// refused at once instead of costing its whole memory.
bool mayHoldPicture(const QByteArray& data, qint64 width, qint64 height) {
    constexpr qsizetype kHeaderBytes = 18;
    if (data.size() < kHeaderBytes)
        return false;
    const auto byteAt = [&data](qsizetype at) { return quint8(data[at]); };
    const int imageType = byteAt(2);
    const qint64 mapLength = byteAt(5) | (byteAt(6) << 8);
    const qint64 mapEntryBytes = (byteAt(7) + 7) / 8;
    const qint64 pixelBytes = qMax(1, (byteAt(16) + 7) / 8);
    const qint64 start = kHeaderBytes + byteAt(0) + (byteAt(1) ? mapLength * mapEntryBytes : 0);
    const qint64 available = data.size() - start;
    const qint64 pixels = width * height;
    if (available <= 0)
        return false;
    if (imageType >= 9) // run-length encoded
        return (pixels + 127) / 128 * (1 + pixelBytes) <= available;
    return pixels * pixelBytes <= available;
}

} // namespace

QImage DecodeTga(const QByteArray& data, qint64 maxBytes) {
    const stbi_io_callbacks callbacks = {readBytes, skipBytes, atEnd};
    int width = 0, height = 0, channels = 0;
    {
        MemorySource probe{data};
        if (!stbi_info_from_callbacks(&callbacks, &probe, &width, &height, &channels))
            return {};
    }
    if (width <= 0 || height <= 0 || qint64(width) * height * 4 > maxBytes ||
        !mayHoldPicture(data, width, height))
        return {};

    MemorySource source{data};
    stbi_uc* pixels = stbi_load_from_callbacks(&callbacks, &source, &width, &height, &channels, 4);
    if (!pixels)
        return {};
    QImage image;
    if (!source.ranOut) {
        const QImage view(pixels, width, height, width * 4, QImage::Format_RGBA8888);
        image = view.convertToFormat(QImage::Format_RGB888);
    }
    stbi_image_free(pixels);
    return image;
}
