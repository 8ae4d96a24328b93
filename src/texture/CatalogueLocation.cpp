#include "CatalogueLocation.h"

#include "app/PathUtils.h"

#include <QDir>
#include <QFileInfo>

QString UserCatalogueFile() {
    QString base = qEnvironmentVariable("XDG_CONFIG_HOME");
    if (base.isEmpty())
        base = QDir::homePath() + QStringLiteral("/.config");
    return base + QStringLiteral("/kelvaris/kelvaris.csv");
}

QString ShippedCatalogueFile() {
    const QString beside = ProgramFolder() + QStringLiteral("/kelvaris.csv");
    if (QFileInfo(beside).isFile())
        return beside;
    const QString installed =
        QDir::cleanPath(ProgramFolder() + QStringLiteral("/../share/kelvaris/kelvaris.csv"));
    if (QFileInfo(installed).isFile())
        return installed;
    return beside;
}

QString CatalogueFile() {
    const QString own = UserCatalogueFile();
    return QFileInfo(own).isFile() ? own : ShippedCatalogueFile();
}
