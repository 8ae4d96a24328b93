#include "ChatClientLauncher.h"

#include "app/PathUtils.h"
#include "app/UiServices.h"

#include <QDir>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

QString WinePrefixOf(const QString& gameFolder) {
    QDir dir(QFileInfo(gameFolder).absoluteFilePath());
    do {
        if (QFileInfo(dir.filePath(QStringLiteral("drive_c"))).isDir() &&
            QFileInfo(dir.filePath(QStringLiteral("dosdevices"))).isDir())
            return dir.absolutePath();
    } while (dir.cdUp());
    return {};
}

bool LaunchChatClient(const QString& GameFolder, const QString& Arguments, UiServices& ui) {
    const QString client = ResolveExistingCase(GameFolder + QStringLiteral("/paragonchat.exe"));
    if (!QFileInfo(client).isFile()) {
        ui.Message(QStringLiteral("Unable to locate Paragon Chat in this folder.\r\n") + GameFolder,
                   MsgIcon::Critical);
        return false;
    }
    const QString wine = QStandardPaths::findExecutable(QStringLiteral("wine"));
    if (wine.isEmpty()) {
        ui.Message(QStringLiteral("Unable to start Paragon Chat: Wine is not installed.\r\n"
                                  "Install Wine (the \"wine\" command) and start again."),
                   MsgIcon::Critical);
        return false;
    }
    ProgramStart start;
    start.program = wine;
    start.arguments = QStringList{client} + QProcess::splitCommand(Arguments);
    start.workingFolder = GameFolder;
    const QString prefix = WinePrefixOf(GameFolder);
    if (!prefix.isEmpty())
        start.environment.insert(QStringLiteral("WINEPREFIX"), prefix);
    if (!ui.StartProgram(start)) {
        ui.Message(QStringLiteral("Unable to start Paragon Chat through Wine.\r\n") + client,
                   MsgIcon::Critical);
        return false;
    }
    return true;
}
