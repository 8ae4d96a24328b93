#include "RandomizerDesktopEntry.h"

#include "app/ApplicationId.h"
#include "app/CommandQuoting.h"
#include "app/FileRecord.h"

#include <QDir>

namespace {

QString dataHome() {
    const QString base = qEnvironmentVariable("XDG_DATA_HOME");
    // The variable counts only when it holds an absolute path.
    if (base.startsWith(u'/'))
        return base;
    return QDir::homePath() + QStringLiteral("/.local/share");
}

} // namespace

QString WriteRandomizerDesktopEntry(const QStringList& clientArguments, const QString& program) {
    if (program.isEmpty())
        return {};
    const std::optional<QString> exec =
        DesktopExecValue(QStringList{program, QStringLiteral("-randomizer")} + clientArguments);
    if (!exec)
        return {};
    const QString folder = dataHome() + QStringLiteral("/applications");
    if (!QDir().mkpath(folder))
        return {};
    const QString path = folder + QStringLiteral("/kelvaris-randomizer.desktop");
    const QString text = QStringLiteral("[Desktop Entry]\n"
                                        "Type=Application\n"
                                        "Name=City of Heroes (Kelvaris randomizer)\n"
                                        "Comment=Start the game with a fresh random login and "
                                        "character background\n"
                                        "Exec=") +
                         *exec + QStringLiteral("\nIcon=") + kApplicationId +
                         QStringLiteral("\n"
                                        "Terminal=false\n"
                                        "Categories=Game;\n");
    return WriteFileAtomically(path, text.toUtf8()) ? path : QString();
}
