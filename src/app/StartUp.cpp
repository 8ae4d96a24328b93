#include "StartUp.h"

#include "modRegistry.h"

QString JoinCommandLine(const QStringList& arguments) {
    QStringList parts;
    for (const QString& argument : arguments) {
        if (argument.contains(u' ') || argument.contains(u'\t'))
            parts << u'"' + argument + u'"';
        else
            parts << argument;
    }
    return parts.join(u' ');
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
