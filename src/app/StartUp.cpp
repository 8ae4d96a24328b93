#include "StartUp.h"

#include "modRegistry.h"

namespace {

bool mustQuote(const QString& argument) {
    return argument.isEmpty() || argument.contains(u' ') || argument.contains(u'\t') ||
           argument.contains(u'"');
}

} // namespace

QString JoinCommandLine(const QStringList& arguments) {
    QStringList parts;
    for (const QString& argument : arguments) {
        if (!mustQuote(argument)) {
            parts << argument;
            continue;
        }
        QString quoted = argument;
        quoted.replace(u'\\', QStringLiteral("\\\\"));
        quoted.replace(u'"', QStringLiteral("\\\""));
        parts << u'"' + quoted + u'"';
    }
    return parts.join(u' ');
}

QStringList SplitJoinedCommandLine(const QString& commandLine) {
    QStringList arguments;
    qsizetype i = 0;
    const qsizetype n = commandLine.size();
    while (i < n) {
        if (commandLine[i] == u' ' || commandLine[i] == u'\t') {
            ++i;
            continue;
        }
        QString argument;
        if (commandLine[i] == u'"') {
            for (++i; i < n && commandLine[i] != u'"'; ++i) {
                if (commandLine[i] == u'\\' && i + 1 < n &&
                    (commandLine[i + 1] == u'\\' || commandLine[i + 1] == u'"'))
                    ++i;
                argument += commandLine[i];
            }
            ++i; // the closing quote
        } else {
            for (; i < n && commandLine[i] != u' ' && commandLine[i] != u'\t'; ++i)
                argument += commandLine[i];
        }
        arguments << argument;
    }
    return arguments;
}

bool IsRandomizerCommandLine(const QString& commandLine) {
    return commandLine.contains(QStringLiteral("-randomizer"));
}

QString StartGameFolder() {
    const QString folder = modRegistry::QueryValue(kSettingsKey, QStringLiteral("CohPath"));
    if (!folder.isEmpty())
        return folder;
    // This key is fixed: it is read before "CohRegKey" is known.
    return modRegistry::QueryValue(QStringLiteral("Software\\Cryptic\\Coh"),
                                   QStringLiteral("Installation Directory"));
}
