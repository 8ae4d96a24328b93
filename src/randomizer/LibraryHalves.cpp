#include "LibraryHalves.h"

#include "texture/ScreenTargets.h"

namespace {

const LibraryHalfInfo kHalves[] = {
    {"login", "Add to login screen", kLoginScreen, "/Kelvaris/RandomHL/", "RandomHL"},
    {"character", "Add to character selection screen", kCharacterScreen, "/Kelvaris/RandomHC/",
     "RandomHC"},
};

} // namespace

const LibraryHalfInfo& HalfInfo(LibraryHalf half) {
    return kHalves[half == LibraryHalf::Login ? 0 : 1];
}

bool HalfNamed(const QString& name, LibraryHalf& half) {
    for (LibraryHalf candidate : {LibraryHalf::Login, LibraryHalf::Character})
        if (name.compare(QLatin1String(HalfInfo(candidate).name), Qt::CaseInsensitive) == 0) {
            half = candidate;
            return true;
        }
    return false;
}

QString LibraryFolderOf(const QString& gameFolder, LibraryHalf half) {
    return gameFolder + QString::fromLatin1(HalfInfo(half).folder);
}
