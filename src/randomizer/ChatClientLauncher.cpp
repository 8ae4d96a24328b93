#include "ChatClientLauncher.h"

#include "app/CommandQuoting.h"
#include "app/GameInstallations.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"

#include <QFileInfo>
#include <QStandardPaths>

namespace {

// What to install when the program a runner needs is not there.
QString missingRunnerMessage(const QString& program) {
    if (program == u"bottles-cli")
        return QStringLiteral("Bottles was not found. Install Bottles (its \"bottles-cli\" "
                              "command) and try again.");
    if (program == u"flatpak")
        return QStringLiteral("Flatpak was not found. Install the \"flatpak\" package and try "
                              "again.");
    return QStringLiteral("Wine was not found. Install the \"wine\" package (or start the game "
                          "from its launcher once) and try again.");
}

// A runner's program as a path that can be started: a full path as it
// stands when it can run, a bare name looked up on PATH.
QString startableProgram(const QString& program) {
    if (program.contains(u'/'))
        return QFileInfo(program).isExecutable() ? program : QString();
    return QStandardPaths::findExecutable(program);
}

} // namespace

bool LaunchChatClient(const QString& GameFolder, const QStringList& Arguments, UiServices& ui) {
    const QString client = ResolveExistingCase(GameFolder + QStringLiteral("/paragonchat.exe"));
    if (!QFileInfo(client).isFile()) {
        ui.Message(QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n") + GameFolder,
                   MsgIcon::Critical);
        return false;
    }
    QString prefix;
    GameRunner runner = RunnerForGameFolder(GameFolder, &prefix);
    QString program = startableProgram(runner.program);
    if (program.isEmpty() && runner.kind == GameRunner::Kind::Wine &&
        runner.program != SystemWine().program) {
        // A launcher's Wine that has gone since: the one on PATH still runs
        // the prefix.
        runner = SystemWine();
        program = startableProgram(runner.program);
    }
    if (program.isEmpty()) {
        ui.Message(missingRunnerMessage(runner.program), MsgIcon::Critical);
        return false;
    }

    ProgramStart start;
    start.program = program;
    start.workingFolder = GameFolder;
    if (runner.kind == GameRunner::Kind::Bottles) {
        // bottles-cli takes the client's arguments as one text, which
        // Bottles puts into a shell command line: each argument is quoted
        // for that shell so it arrives whole.
        start.arguments =
            runner.programArguments + QStringList{QStringLiteral("run"), QStringLiteral("-b"),
                                                  runner.bottle, QStringLiteral("-e"), client};
        if (!Arguments.isEmpty())
            start.arguments << QStringLiteral("--args") << ShellQuoted(Arguments);
        start.environment.remove(QStringLiteral("WINEPREFIX")); // the bottle's own is used
    } else {
        start.arguments = QStringList{client} + Arguments;
        if (!prefix.isEmpty())
            start.environment.insert(QStringLiteral("WINEPREFIX"), prefix);
    }
    if (!ui.StartProgram(start)) {
        ui.Message(QStringLiteral("Unable to start Paragon Chat through Wine.\r\n") + client,
                   MsgIcon::Critical);
        return false;
    }
    return true;
}
