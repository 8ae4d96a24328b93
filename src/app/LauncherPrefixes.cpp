#include "LauncherPrefixes.h"

#include "LauncherFiles.h"

#include <QDir>
#include <QDirIterator>
#include <QFileInfo>
#include <QHash>
#include <algorithm>

namespace {

QStringList sortedEntries(const QString& folder, QDir::Filters filters, int most) {
    QStringList names;
    QDirIterator it(folder, filters | QDir::NoDotAndDotDot | QDir::Hidden);
    while (it.hasNext() && names.size() < most) {
        it.next();
        names << it.fileName();
    }
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace

QString RealFolder(const QString& folder) {
    const QString real = QFileInfo(folder).canonicalFilePath();
    return real.isEmpty() ? QDir::cleanPath(folder) : real;
}

bool IsWinePrefix(const QString& folder) {
    return !folder.isEmpty() && QFileInfo(folder + QStringLiteral("/drive_c")).isDir();
}

QString ProtonWine(const QString& protonFolder) {
    for (const char* wine : {"/files/bin/wine", "/dist/bin/wine"}) {
        const QString found = ExecutableOrEmpty(protonFolder + QString::fromLatin1(wine));
        if (!found.isEmpty())
            return found;
    }
    return {};
}

QStringList SubfoldersOf(const QString& folder, int most) {
    QStringList paths;
    for (const QString& name : sortedEntries(folder, QDir::Dirs, most))
        paths << folder + u'/' + name;
    return paths;
}

QStringList FilesOf(const QString& folder, const QString& suffix, int most) {
    QStringList paths;
    for (const QString& name : sortedEntries(folder, QDir::Files, most))
        if (name.endsWith(suffix))
            paths << folder + u'/' + name;
    return paths;
}

QList<LauncherPrefix> PlainWinePrefixes() {
    QList<LauncherPrefix> found;
    const QString fromEnvironment = qEnvironmentVariable("WINEPREFIX");
    for (const QString& prefix :
         QStringList{fromEnvironment, QDir::homePath() + QStringLiteral("/.wine")})
        if (IsWinePrefix(prefix))
            found.append({QStringLiteral("Wine"), QDir::cleanPath(prefix), SystemWine(), {}});
    return found;
}

QList<LauncherPrefix> FindLauncherPrefixes() {
    QList<LauncherPrefix> all = PlainWinePrefixes();
    all << LutrisPrefixes() << BottlesPrefixes(false) << BottlesPrefixes(true) << SteamPrefixes()
        << HeroicPrefixes();
    // One entry per real folder: the first a launcher gives, else the first.
    QHash<QString, qsizetype> byRealPath;
    QList<LauncherPrefix> unique;
    for (const LauncherPrefix& entry : all) {
        const QString real = RealFolder(entry.prefix);
        const auto seen = byRealPath.constFind(real);
        if (seen == byRealPath.cend()) {
            byRealPath.insert(real, unique.size());
            unique << entry;
        } else if (unique[*seen].launcher == u"Wine" && entry.launcher != u"Wine") {
            unique[*seen] = entry;
        }
    }
    return unique;
}
