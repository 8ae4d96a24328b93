#include "LauncherFiles.h"
#include "LauncherPrefixes.h"

#include <QDir>
#include <QFileInfo>
#include <QHash>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// The Wine a game's "wineVersion.bin" stands for: that program, or for a
// Proton build (whose "bin" is its "proton" script) the build's own Wine.
QString wineOf(const QString& bin) {
    const QFileInfo info(bin);
    if (info.fileName() == u"proton")
        return ProtonWine(info.absolutePath());
    return ExecutableOrEmpty(bin);
}

void readGameSettings(const QJsonObject& game, QHash<QString, QString>& wineByPrefix) {
    const QString prefix = ExpandHome(game.value(QStringLiteral("winePrefix")).toString());
    const QString bin = ExpandHome(game.value(QStringLiteral("wineVersion"))
                                       .toObject()
                                       .value(QStringLiteral("bin"))
                                       .toString());
    if (prefix.isEmpty() || bin.isEmpty())
        return;
    const QString wine = wineOf(bin);
    if (!wine.isEmpty() && !wineByPrefix.contains(RealFolder(prefix)))
        wineByPrefix.insert(RealFolder(prefix), wine);
}

// Each GamesConfig file holds one object per game, keyed by the game's id.
QHash<QString, QString> wineByPrefix(const QString& configFolder) {
    QHash<QString, QString> wines;
    for (const QString& file : FilesOf(configFolder, QStringLiteral(".json"))) {
        const auto text = ReadLauncherFile(file);
        if (!text)
            continue;
        const QJsonDocument doc = QJsonDocument::fromJson(*text);
        if (!doc.isObject())
            continue;
        const QJsonObject top = doc.object();
        readGameSettings(top, wines);
        for (auto it = top.begin(); it != top.end(); ++it)
            if (it.value().isObject())
                readGameSettings(it.value().toObject(), wines);
    }
    return wines;
}

} // namespace

QList<LauncherPrefix> HeroicPrefixes() {
    const QString home = QDir::homePath();
    QStringList prefixes;
    for (const QString& folder : SubfoldersOf(home + QStringLiteral("/Games/Heroic/Prefixes"))) {
        if (IsWinePrefix(folder)) {
            prefixes << folder;
            continue;
        }
        // Newer versions keep each game's prefix one level down ("default").
        for (const QString& inner : SubfoldersOf(folder))
            if (IsWinePrefix(inner))
                prefixes << inner;
    }
    if (prefixes.isEmpty())
        return {};

    const QHash<QString, QString> wines =
        wineByPrefix(home + QStringLiteral("/.config/heroic/GamesConfig"));
    QList<LauncherPrefix> found;
    for (const QString& prefix : prefixes) {
        LauncherPrefix entry{QStringLiteral("Heroic"), prefix, SystemWine(), {}};
        const QString wine = wines.value(RealFolder(prefix));
        if (!wine.isEmpty())
            entry.runner.program = wine;
        found << entry;
    }
    return found;
}
