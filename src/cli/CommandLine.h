#pragma once

#include <QStringList>

// Kelvaris's second front end: every operation of the window as a command,
// run without any window or display ("kelvaris texture set ..."). The
// randomizer start ("-randomizer" anywhere) and the window (no arguments) are
// not commands.

// Whether the arguments after the program name are for the command line:
// anything but nothing at all and Qt's own single-dash options, which go to
// the window.
bool IsCommandLine(const QStringList& arguments);

// Runs the command: 0 on success, 1 on failure, 2 on a usage error (with a
// short usage text on standard error).
int RunCommandLine(const QStringList& arguments);

// The usage text of --help.
QString CommandLineUsage();
