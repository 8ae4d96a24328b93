#include "BusyHost.h"

#include <QCoreApplication>
#include <QElapsedTimer>

void ProcessEventsNowAndThen() {
    constexpr qint64 kSliceMs = 8;
    static QElapsedTimer since;
    if (since.isValid() && since.elapsed() < kSliceMs)
        return;
    QCoreApplication::processEvents();
    since.start();
}

void HeadlessBusy::ShowProgress(long Value, const QString&) {
    if (onProgress)
        onProgress(Value);
    ProcessEventsNowAndThen();
}
