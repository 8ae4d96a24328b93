#include "VersionString.h"

QString VersionString() {
    return u'v' + QString::number(KELVARIS_VERSION_MAJOR) + u'.' +
           QString::number(KELVARIS_VERSION_MINOR) + QStringLiteral(" build") + u' ' +
           QString::number(KELVARIS_VERSION_PATCH);
}
