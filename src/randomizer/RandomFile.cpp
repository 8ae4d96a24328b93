#include "RandomFile.h"

#include "app/Clock.h"
#include "app/modRegistry.h"
#include "texture/TextureWriter.h"

#include <QDirIterator>
#include <QFileInfo>
#include <random>

namespace {

constexpr int kDraws = 10;

} // namespace

QStringList ListLibraryImages(const QString& Folder, int limit) {
    QStringList names;
    QDirIterator it(Folder, {QStringLiteral("*.dds")}, QDir::Files | QDir::NoDotAndDotDot);
    while (names.size() < limit && it.hasNext()) {
        it.next();
        // Only what can be a prepared picture: a regular file (or a link to
        // one) that holds at least a DDS header and is not absurdly large.
        const QFileInfo entry = it.fileInfo();
        if (entry.isFile() && entry.size() >= kSmallestLibraryEntry &&
            entry.size() <= kLargestLibraryEntry)
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
    const QStringList names = ListLibraryImages(Folder);
    const QString last = modRegistry::QueryValue(kSettingsKey, Key);
    QString pick;
    for (int draw = 0; draw < kDraws; ++draw) {
        const auto index = static_cast<qsizetype>(random() * double(names.size()));
        pick = index < names.size() ? names[index] : QString();
        if (pick != last)
            break;
    }
    modRegistry::SetValue(kSettingsKey, Key, pick);
    return pick;
}
