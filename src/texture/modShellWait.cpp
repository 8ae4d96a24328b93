#include "modShellWait.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QProcess>

namespace {
constexpr int kPollMilliseconds = 100;
}

bool ShellAndWait(const QStringList& CommandLine, int, QString& Message, qint64 TimeOut) {
    const QString errorCalling =
        QStringLiteral("Error calling the NVIDIA tool!\r\nPlease disable Texture Compression.");
    if (CommandLine.isEmpty()) {
        Message = errorCalling;
        return false;
    }

    // Owned by the application, so a program left running after a time-out
    // keeps its watcher until it ends (or Kelvaris does).
    auto* process = new QProcess(QCoreApplication::instance());
    process->setProgram(CommandLine.first());
    process->setArguments(CommandLine.mid(1));
    process->setStandardOutputFile(QProcess::nullDevice());
    process->setStandardErrorFile(QProcess::nullDevice());
    process->start(QIODevice::NotOpen);
    if (!process->waitForStarted(-1)) {
        delete process;
        Message = errorCalling;
        return false;
    }
    if (process->processId() == 0) {
        process->deleteLater();
        Message = QStringLiteral("Please click OK when\r\nthe NVIDIA tool finishes.");
        return false;
    }

    // Waits in slices of 100 ms with the window's events run between them,
    // and returns as soon as the tool has ended rather than after the slice.
    bool result = true;
    QElapsedTimer clock;
    clock.start();
    for (;;) {
        QCoreApplication::processEvents();
        if (process->state() == QProcess::NotRunning ||
            process->waitForFinished(int(kPollMilliseconds)))
            break;
        if (clock.elapsed() > TimeOut) {
            Message = QStringLiteral("The NVIDIA tool has timed out.");
            result = false;
            break;
        }
    }

    if (process->state() == QProcess::NotRunning)
        delete process;
    else
        QObject::connect(process, &QProcess::finished, process, &QObject::deleteLater);
    return result;
}
