#pragma once

#include <QString>
#include <QStringList>

// Starts a program (CommandLine: the program, then its arguments) and waits
// for it to end while the window stays alive: every 100 ms pending window
// events run. True when it started and ended within TimeOut milliseconds;
// otherwise false with the text to show in Message (left alone on success).
// A program still running at the time-out is left to run. WindowStyle is
// kept for the callers' sake; no program started here opens a window.
bool ShellAndWait(const QStringList& CommandLine, int WindowStyle, QString& Message,
                  qint64 TimeOut);

// The texture writer's time-out: in effect none.
constexpr qint64 kToolTimeOut = 2000000000;
