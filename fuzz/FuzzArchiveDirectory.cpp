// Feeds arbitrary bytes to the game archive reader as if they were a ".pigg"
// file: the directory, the name table and the first bytes of every entry.

#include "texture/GameArchive.h"
#include "texture/TextureHeader.h"

#include <QBuffer>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    QByteArray bytes =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::ReadOnly);
    const ArchiveDirectory directory = ReadArchiveDirectory(buffer);
    for (const ArchiveEntry& entry : directory.entries) {
        QString error;
        const QByteArray start = ReadArchiveEntryStart(buffer, entry, kTextureStartBytes, error);
        int width = 0;
        int height = 0;
        ReadTextureSize(start, width, height);
    }
    return 0;
}
