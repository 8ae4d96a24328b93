// Feeds arbitrary bytes to "Import Online Textures" as the .reg file another
// player sent, starting each time from an empty settings store. Checks that
// the store is still readable afterwards and that no slot's texture folder or
// file name was stored pointing outside the game's data folder.

#include "ScratchFolder.h"
#include "app/PathUtils.h"
#include "app/RegText.h"
#include "app/modRegistry.h"
#include "online/OnlineSettings.h"
#include "online/TexturesRegFile.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    ScratchFolder();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QString store = modRegistry::StoreFilePath();
    QFile::remove(store);
    const QString file = WriteScratchFile(QStringLiteral("Kelvaris Textures.reg"),
                                          reinterpret_cast<const char*>(data), size);
    ImportOnlineTextures(file);

    QFile written(store);
    if (written.open(QIODevice::ReadOnly) && !ParseRegedit4(written.readAll()))
        __builtin_trap(); // the import left a store that cannot be read
    for (int slot = 0; slot < kDownloadSlots; ++slot) {
        for (OnlineValue value : {OnlineValue::Path, OnlineValue::File}) {
            const QString text =
                modRegistry::QueryValue(kSettingsKey, OnlineValueName(value, slot));
            if (!text.isEmpty() && !IsContainedRelative(text))
                __builtin_trap();
        }
    }
    return 0;
}
