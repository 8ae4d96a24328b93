#include "RandomizerArguments.h"

namespace {

const QString kRandomizerSwitch = QStringLiteral("-randomizer");
const QString kSkipUpdateSwitch = QStringLiteral("-skipupdate");

} // namespace

QString PassThroughArguments(const QString& CommandLine) {
    QString arguments = CommandLine;
    const qsizetype p = arguments.indexOf(kRandomizerSwitch);
    if (p >= 0)
        arguments.remove(p, kRandomizerSwitch.size());
    arguments.prepend(u' ');
    // "-skipupdate" only concerns Kelvaris's launcher; the daily refresh is
    // decided by the stored date alone.
    const qsizetype q = arguments.indexOf(kSkipUpdateSwitch);
    if (q >= 0)
        arguments.remove(q, kSkipUpdateSwitch.size());
    return arguments;
}
