#include "RandomFile.h"

#include "app/Clock.h"
#include "app/modRegistry.h"
#include "texture/TextureWriter.h"

#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <cstring>
#include <dirent.h>
#include <optional>
#include <random>
#include <strings.h>

namespace {

constexpr int kDraws = 10;

bool isLibraryImage(const QFileInfo& entry) {
    return entry.isFile() && entry.size() >= kSmallestLibraryEntry &&
           entry.size() <= kLargestLibraryEntry;
}

// The names ListLibraryImages would give, in the same order, read without
// looking each entry up: a game start picks one entry of a library that may
// hold thousands, and only the pick needs checking. Nothing when the folder
// holds more ".dds" names than a library is listed with; the caller then
// lists the checked way.
std::optional<QStringList> uncheckedNames(const QString& Folder) {
    QStringList names;
    DIR* dir = ::opendir(QFile::encodeName(Folder).constData());
    if (dir == nullptr)
        return names;
    while (const dirent* entry = ::readdir(dir)) {
        const char* name = entry->d_name;
        const size_t length = std::strlen(name);
        if (name[0] == '.' || entry->d_type == DT_DIR || length < 4 ||
            ::strcasecmp(name + length - 4, ".dds") != 0)
            continue;
        if (names.size() == kLibraryListLimit) {
            ::closedir(dir);
            return std::nullopt;
        }
        names << QFile::decodeName(name);
    }
    ::closedir(dir);
    return names;
}

} // namespace

QStringList ListLibraryImages(const QString& Folder, int limit) {
    QStringList names;
    QDirIterator it(Folder, {QStringLiteral("*.dds")}, QDir::Files | QDir::NoDotAndDotDot);
    while (names.size() < limit && it.hasNext()) {
        it.next();
        // Only what can be a prepared picture: a regular file (or a link to
        // one) that holds at least a DDS header and is not absurdly large.
        if (isLibraryImage(it.fileInfo()))
            names << it.fileName();
    }
    return names;
}

UniformRandom ClockSeededRandom() {
    auto engine =
        std::make_shared<std::mt19937>(static_cast<std::uint32_t>(SecondsSinceMidnight() * 1000.0));
    return [engine] { return std::uniform_real_distribution<double>(0.0, 1.0)(*engine); };
}

QString RandomFile(const QString& Folder, const QString& Key, const UniformRandom& random) {
    const QString pick = PickRandomFile(Folder, modRegistry::QueryValue(kSettingsKey, Key), random);
    modRegistry::SetValue(kSettingsKey, Key, pick);
    return pick;
}

QString PickRandomFile(const QString& Folder, const QString& last, const UniformRandom& random) {
    std::optional<QStringList> unchecked = uncheckedNames(Folder);
    QStringList names = unchecked ? std::move(*unchecked) : ListLibraryImages(Folder);
    QString pick;
    for (int draw = 0; draw < kDraws;) {
        const auto index = static_cast<qsizetype>(random() * double(names.size()));
        pick = index < names.size() ? names[index] : QString();
        // An entry that cannot be a picture leaves the list and the draw is
        // made again: the pick stays uniform over the real entries.
        if (unchecked && !pick.isEmpty() && !isLibraryImage(QFileInfo(Folder + u'/' + pick))) {
            names.removeAt(index);
            pick.clear();
            continue;
        }
        if (pick != last)
            break;
        ++draw;
    }
    return pick;
}
