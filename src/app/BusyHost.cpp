#include "BusyHost.h"

#include <QCoreApplication>

void HeadlessBusy::ShowProgress(long Value, const QString&) {
    if (onProgress)
        onProgress(Value);
    QCoreApplication::processEvents();
}
