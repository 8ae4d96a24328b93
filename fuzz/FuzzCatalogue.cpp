// Feeds arbitrary bytes to the texture catalogue reader as the "kelvaris.csv"
// file a player may edit, and checks that no texture it hands out could be
// written outside the game's data folder or has a size that is not positive.

#include "ScratchFolder.h"
#include "texture/Catalogue.h"
#include "texture/CatalogueReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ScratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString file =
        WriteScratchFile(QStringLiteral("kelvaris.csv"), reinterpret_cast<const char*>(data), size);
    const CatalogueContents contents = ReadCatalogue(file);
    for (const CatalogueCategory& category : contents.categories)
        for (const CatalogueEntry& entry : category.entries)
            if (entry.width <= 0 || entry.height <= 0 ||
                !IsSafeCatalogueEntry(entry.folder, entry.file))
                __builtin_trap();
    return 0;
}
