#pragma once

#include <QString>

// The arguments a randomizer run hands on to the chat client: the tool's own
// command line with the first "-randomizer" cut out (a space put in front)
// and then the first "-skipupdate" cut out (no space added). "-randomizer -x 1"
// gives two spaces followed by "-x 1"; "-randomizer" alone gives one space.
// Later occurrences of either switch are passed on as they stand.
QString PassThroughArguments(const QString& CommandLine);
