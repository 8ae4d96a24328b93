// Feeds arbitrary bytes to the game archive reader as if they were a ".pigg"
// file: the directory, the name table and the first bytes of every entry,
// both as the reader gives them and as the catalogue build reads them (its
// interface textures found and sized from the file, on this thread).

#include "ScratchFolder.h"
#include "texture/GameArchive.h"
#include "texture/InterfaceTextures.h"
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

    ArchiveTextures archive;
    archive.path =
        WriteScratchFile(QStringLiteral("fuzz.pigg"), reinterpret_cast<const char*>(data), size);
    FindInterfaceTextures(archive);
    for (qsizetype i = 0; i < archive.found.size(); ++i)
        archive.toSize.append(i);
    archive.sized.resize(archive.toSize.size());
    const std::atomic<bool> cancel = false;
    std::atomic<long> done = 0;
    ReadInterfaceTextureSizes(archive, 0, archive.toSize.size(), archive.sized.data(), cancel,
                              done);
    return 0;
}
