#include "LinkOpener.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>

namespace {

QString execLineOf(const QString& desktopFile) {
    QStringList dirs = QStandardPaths::standardLocations(QStandardPaths::ApplicationsLocation);
    for (const QString& dir : dirs) {
        QFile file(dir + u'/' + desktopFile);
        if (!file.open(QIODevice::ReadOnly | QIODevice::Text))
            continue;
        bool inEntry = false;
        while (!file.atEnd()) {
            const QString line = QString::fromUtf8(file.readLine()).trimmed();
            if (line.startsWith(u'['))
                inEntry = line == u"[Desktop Entry]";
            else if (inEntry && line.startsWith(u"Exec="))
                return line.mid(5);
        }
    }
    return {};
}

} // namespace

QString DesktopHandlerCommand(const QString& Protocol) {
    QProcess query;
    query.start(QStringLiteral("xdg-mime"), {QStringLiteral("query"), QStringLiteral("default"),
                                             QStringLiteral("x-scheme-handler/") + Protocol});
    if (!query.waitForFinished(5000))
        return {};
    const QString desktopFile = QString::fromUtf8(query.readAllStandardOutput()).trimmed();
    if (desktopFile.isEmpty())
        return {};
    QString exec = execLineOf(desktopFile);
    if (exec.isEmpty())
        return {};
    // The desktop's field codes: the URL goes where %u or %U stands.
    exec.replace(QStringLiteral("%u"), QStringLiteral("%1"));
    exec.replace(QStringLiteral("%U"), QStringLiteral("%1"));
    for (const QString& code : {QStringLiteral("%f"), QStringLiteral("%F"), QStringLiteral("%i"),
                                QStringLiteral("%c"), QStringLiteral("%k")})
        exec.remove(code);
    return exec.trimmed();
}

QString NoHandlerMessage(const QString& Protocol) {
    return QStringLiteral("Unable to find a program for ") + Protocol + QStringLiteral("links.");
}

QString BuildLinkCommand(const QString& Command, const QString& Link) {
    QString command = Command;
    qsizetype pos = 0;
    while (pos < command.size()) {
        if (command[pos] != u'%') {
            ++pos;
            continue;
        }
        const qsizetype close = command.indexOf(u'%', pos + 1);
        if (close < 0)
            break;
        const QString name = command.mid(pos + 1, close - pos - 1);
        const QString value = name.isEmpty() ? QString() : qEnvironmentVariable(name.toLocal8Bit());
        if (!value.isEmpty()) {
            command.replace(pos, close - pos + 1, value);
            pos += value.size();
        } else {
            ++pos; // left as written; the scan goes on from the next character
        }
    }
    const qsizetype slot = command.indexOf(QStringLiteral("%1"));
    if (slot >= 0)
        command.replace(slot, 2, Link);
    else
        command += u' ' + Link;
    return command;
}

QStringList SplitCommandLine(const QString& command) {
    return QProcess::splitCommand(command);
}

void OpenLink(const QString& Protocol, const QString& Link, UiServices& ui,
              const HandlerLookup& lookup) {
    const QString registered = lookup(Protocol);
    if (registered.isEmpty()) {
        ui.Message(NoHandlerMessage(Protocol), MsgIcon::Exclamation);
        return;
    }
    QStringList parts = SplitCommandLine(BuildLinkCommand(registered, Link));
    if (parts.isEmpty())
        return;
    ProgramStart start;
    start.program = parts.takeFirst();
    start.arguments = parts;
    ui.StartProgram(start);
}
