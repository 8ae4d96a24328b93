#include "UiServices.h"

#include <QProcess>

QString QtFileFilter(const QString& filter) {
    const QStringList parts = filter.split(u'|');
    QStringList entries;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QString patterns = parts[i + 1];
        patterns.replace(u';', u' ');
        entries << parts[i] + QStringLiteral(" (") + patterns + u')';
    }
    return entries.join(QStringLiteral(";;"));
}

bool StartDetached(const ProgramStart& start) {
    QProcess process;
    process.setProgram(start.program);
    process.setArguments(start.arguments);
    process.setWorkingDirectory(start.workingFolder);
    process.setProcessEnvironment(start.environment);
    return process.startDetached();
}
