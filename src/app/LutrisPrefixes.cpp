#include "LauncherFiles.h"
#include "LauncherPrefixes.h"
#include "PathUtils.h"

#include <QDir>
#include <QFileInfo>

namespace {

// The prefix a game lies in when its file names none: the nearest ancestor
// of its program that holds drive_c.
QString prefixAbove(const QString& program) {
    QDir dir(QFileInfo(program).absolutePath());
    for (int up = 0; up < 16; ++up) {
        if (IsWinePrefix(dir.absolutePath()))
            return dir.absolutePath();
        if (!dir.cdUp())
            break;
    }
    return {};
}

std::optional<LauncherPrefix> lutrisGame(const QString& file, const QString& runners) {
    const std::optional<QByteArray> text = ReadLauncherFile(file);
    if (!text)
        return std::nullopt;
    const QString runner = YamlValue(*text, {}, QStringLiteral("runner"));
    if (!runner.isEmpty() && runner != u"wine")
        return std::nullopt; // a native game, an emulator: no prefix
    QString prefix = ExpandHome(YamlValue(*text, QStringLiteral("game"), QStringLiteral("prefix")));
    QString program = ExpandHome(YamlValue(*text, QStringLiteral("game"), QStringLiteral("exe")));
    if (!program.isEmpty() && QFileInfo(program).isRelative())
        program = prefix.isEmpty() ? QString() : prefix + u'/' + program;
    if (prefix.isEmpty() && !program.isEmpty())
        prefix = prefixAbove(program);
    if (!IsWinePrefix(prefix))
        return std::nullopt;

    LauncherPrefix found{QStringLiteral("Lutris"), QDir::cleanPath(prefix), SystemWine(),
                         program.isEmpty() ? QString() : QDir::cleanPath(program)};
    const QString version = YamlValue(*text, QStringLiteral("wine"), QStringLiteral("version"));
    if (IsContainedRelative(version) && !version.contains(u'/') && !version.contains(u'\\')) {
        const QString wine = ExecutableOrEmpty(runners + version + QStringLiteral("/bin/wine"));
        if (!wine.isEmpty())
            found.runner.program = wine;
    }
    return found;
}

} // namespace

QList<LauncherPrefix> LutrisPrefixes() {
    const QString home = QDir::homePath();
    const QString runners = home + QStringLiteral("/.local/share/lutris/runners/wine/");
    QList<LauncherPrefix> found;
    for (const char* folder : {"/.config/lutris/games", "/.local/share/lutris/games"})
        for (const QString& file :
             FilesOf(home + QString::fromLatin1(folder), QStringLiteral(".yml")))
            if (auto game = lutrisGame(file, runners))
                found << *game;
    return found;
}
