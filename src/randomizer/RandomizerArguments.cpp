#include "RandomizerArguments.h"

namespace {

const QString kRandomizerSwitch = QStringLiteral("-randomizer");
const QString kSkipUpdateSwitch = QStringLiteral("-skipupdate");

void cutFirst(QStringList& arguments, const QString& switchText) {
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const qsizetype at = arguments[i].indexOf(switchText);
        if (at < 0)
            continue;
        arguments[i].remove(at, switchText.size());
        if (arguments[i].isEmpty())
            arguments.removeAt(i);
        return;
    }
}

} // namespace

QStringList PassThroughArguments(const QStringList& arguments) {
    QStringList passed = arguments;
    cutFirst(passed, kRandomizerSwitch);
    // "-skipupdate" only concerns Kelvaris's launcher; the daily refresh is
    // decided by the stored date alone.
    cutFirst(passed, kSkipUpdateSwitch);
    return passed;
}
