#include "GameInstallations.h"

#include "LauncherPrefixes.h"
#include "PrefixGames.h"

#include <QDir>
#include <QFileInfo>
#include <QSet>

QList<GameInstallation> FindGameInstallations() {
    QList<GameInstallation> found;
    QSet<QString> folders;
    for (const LauncherPrefix& place : FindLauncherPrefixes()) {
        for (const PrefixGame& game : GamesInPrefix(place.prefix, place.programHint)) {
            const QString real = RealFolder(game.gameFolder);
            if (folders.contains(real))
                continue;
            folders.insert(real);
            found.append(
                {place.launcher, place.prefix, game.gameFolder, place.runner, game.screen});
        }
    }
    return found;
}

QString WinePrefixOf(const QString& gameFolder) {
    if (gameFolder.isEmpty())
        return {};
    QDir dir(RealFolder(QFileInfo(gameFolder).absoluteFilePath()));
    do {
        if (QFileInfo(dir.filePath(QStringLiteral("drive_c"))).isDir() &&
            QFileInfo(dir.filePath(QStringLiteral("dosdevices"))).isDir())
            return dir.absolutePath();
    } while (dir.cdUp());
    return {};
}

GameRunner RunnerForGameFolder(const QString& gameFolder, QString* prefix) {
    const QString own = WinePrefixOf(gameFolder);
    if (prefix)
        *prefix = own;
    if (own.isEmpty())
        return SystemWine();
    const QString real = RealFolder(own);
    for (const LauncherPrefix& place : FindLauncherPrefixes())
        if (RealFolder(place.prefix) == real)
            return place.runner;
    return SystemWine();
}
