// Feeds arbitrary bytes to the readers of game launchers' files (Lutris and
// Bottles YAML, Steam's libraryfolders.vdf): files other programs write and
// Kelvaris only reads while it looks for the game.

#include "app/LauncherFiles.h"

#include <QByteArray>
#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const QByteArray text =
        QByteArray::fromRawData(reinterpret_cast<const char*>(data), qsizetype(size));
    YamlValue(text, QStringLiteral("game"), QStringLiteral("prefix"));
    YamlValue(text, QStringLiteral("wine"), QStringLiteral("version"));
    YamlValue(text, {}, QStringLiteral("Runner"));
    VdfPathValues(text);
    return 0;
}
