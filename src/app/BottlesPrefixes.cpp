#include "LauncherFiles.h"
#include "LauncherPrefixes.h"
#include "PathUtils.h"

#include <QDir>
#include <QFileInfo>

namespace {

const QString kFlatpakId = QStringLiteral("com.usebottles.bottles");

std::optional<LauncherPrefix> bottle(const QString& folder, const QString& data, bool flatpak) {
    const std::optional<QByteArray> text = ReadLauncherFile(folder + QStringLiteral("/bottle.yml"));
    if (!text || !IsWinePrefix(folder))
        return std::nullopt;
    QString name = YamlValue(*text, {}, QStringLiteral("Name"));
    if (name.isEmpty())
        name = QFileInfo(folder).fileName();

    LauncherPrefix found{flatpak ? QStringLiteral("Bottles (Flatpak)") : QStringLiteral("Bottles"),
                         folder,
                         SystemWine(),
                         {}};
    GameRunner bottlesCli{GameRunner::Kind::Bottles, QStringLiteral("bottles-cli"), {}, name};
    if (flatpak) {
        // The bottle's Wine lives inside the Flatpak's runtime: only the
        // Flatpak's own bottles-cli can start it.
        bottlesCli.program = QStringLiteral("flatpak");
        bottlesCli.programArguments = {QStringLiteral("run"),
                                       QStringLiteral("--command=bottles-cli"), kFlatpakId};
        found.runner = bottlesCli;
        return found;
    }
    const QString runner = YamlValue(*text, {}, QStringLiteral("Runner"));
    if (runner.startsWith(QStringLiteral("sys-")))
        return found; // Bottles' name for the system's own Wine
    const QString wine =
        IsContainedRelative(runner) && !runner.contains(u'/') && !runner.contains(u'\\')
            ? ExecutableOrEmpty(data + QStringLiteral("/runners/") + runner +
                                QStringLiteral("/bin/wine"))
            : QString();
    if (wine.isEmpty())
        found.runner = bottlesCli;
    else
        found.runner.program = wine;
    return found;
}

} // namespace

QList<LauncherPrefix> BottlesPrefixes(bool flatpak) {
    const QString data = QDir::homePath() + (flatpak ? QStringLiteral("/.var/app/") + kFlatpakId +
                                                           QStringLiteral("/data/bottles")
                                                     : QStringLiteral("/.local/share/bottles"));
    QList<LauncherPrefix> found;
    for (const QString& folder : SubfoldersOf(data + QStringLiteral("/bottles")))
        if (auto one = bottle(folder, data, flatpak))
            found << *one;
    return found;
}
