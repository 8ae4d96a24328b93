#include "LauncherFiles.h"
#include "LauncherPrefixes.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

namespace {

constexpr int kMostConfigLines = 64;
constexpr int kMostFoldersUp = 8;

struct ProtonBuild {
    QString folderName;
    QString versionText; // its own "version" file ("1690000000 proton-8.0-3")
    QString wine;
};

// config_info holds the Proton version on its first line and then folders
// inside that Proton build (its fonts, its libraries): the build is the
// nearest ancestor of one of them that holds a Wine.
QString wineFromConfigInfo(const QString& compatFolder) {
    const auto text = ReadLauncherFile(compatFolder + QStringLiteral("/config_info"));
    if (!text)
        return {};
    const QStringList lines = QString::fromUtf8(*text).split(u'\n');
    for (int i = 1; i < lines.size() && i < kMostConfigLines; ++i) {
        const QString line = lines[i].trimmed();
        if (!line.startsWith(u'/'))
            continue;
        QString folder = QDir::cleanPath(line);
        for (int up = 0; up < kMostFoldersUp && folder.size() > 1; ++up) {
            const QString wine = ProtonWine(folder);
            if (!wine.isEmpty())
                return wine;
            folder = QFileInfo(folder).path();
        }
    }
    return {};
}

// The prefix's "version" names the Proton that made it, either as that
// build's own name ("GE-Proton8-25") or as its release with a prefix
// revision ("8.0-104" for "Proton 8.0").
QString wineFromVersion(const QString& compatFolder, const QList<ProtonBuild>& builds) {
    const auto text = ReadLauncherFile(compatFolder + QStringLiteral("/version"));
    if (!text)
        return {};
    const QString version = QString::fromUtf8(*text).section(u'\n', 0, 0).trimmed();
    if (version.isEmpty())
        return {};
    for (const ProtonBuild& build : builds)
        if (build.folderName.contains(version) || build.versionText.contains(version))
            return build.wine;
    const qsizetype dash = version.lastIndexOf(u'-');
    const QString release = dash > 0 ? version.left(dash) : QString();
    if (!release.isEmpty())
        for (const ProtonBuild& build : builds)
            if (build.folderName.endsWith(u' ' + release))
                return build.wine;
    return {};
}

QList<ProtonBuild> protonBuilds(const QStringList& roots, const QStringList& libraries) {
    QStringList folders;
    for (const QString& library : libraries)
        folders << SubfoldersOf(library + QStringLiteral("/steamapps/common"), 500);
    for (const QString& root : roots)
        folders << SubfoldersOf(root + QStringLiteral("/compatibilitytools.d"), 500);
    QList<ProtonBuild> builds;
    for (const QString& folder : folders) {
        const QString wine = ProtonWine(folder);
        if (wine.isEmpty())
            continue;
        const auto version = ReadLauncherFile(folder + QStringLiteral("/version"));
        builds.append({QFileInfo(folder).fileName(),
                       version ? QString::fromUtf8(*version).trimmed() : QString(), wine});
    }
    return builds;
}

} // namespace

QList<LauncherPrefix> SteamPrefixes() {
    const QString home = QDir::homePath();
    QStringList roots;
    QStringList libraries;
    QSet<QString> seen;
    const auto addLibrary = [&](const QString& folder) {
        const QString real = QFileInfo(folder).canonicalFilePath();
        if (real.isEmpty() || seen.contains(real))
            return false;
        seen.insert(real);
        libraries << QDir::cleanPath(folder);
        return true;
    };
    for (const char* root : {"/.steam/steam", "/.local/share/Steam"}) {
        const QString folder = home + QString::fromLatin1(root);
        if (!addLibrary(folder))
            continue; // missing, or the same Steam by another path
        roots << folder;
        if (const auto vdf =
                ReadLauncherFile(folder + QStringLiteral("/steamapps/libraryfolders.vdf")))
            for (const QString& path : VdfPathValues(*vdf))
                if (path.startsWith(u'/'))
                    addLibrary(path);
    }

    QList<LauncherPrefix> found;
    std::optional<QList<ProtonBuild>> builds; // looked for once, when first needed
    for (const QString& library : libraries) {
        for (const QString& compat :
             SubfoldersOf(library + QStringLiteral("/steamapps/compatdata"), 2000)) {
            const QString prefix = compat + QStringLiteral("/pfx");
            if (!IsWinePrefix(prefix))
                continue;
            LauncherPrefix entry{QStringLiteral("Steam"), prefix, SystemWine(), {}};
            QString wine = wineFromConfigInfo(compat);
            if (wine.isEmpty()) {
                if (!builds)
                    builds = protonBuilds(roots, libraries);
                wine = wineFromVersion(compat, *builds);
            }
            if (!wine.isEmpty())
                entry.runner.program = wine;
            found << entry;
        }
    }
    return found;
}
