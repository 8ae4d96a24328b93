#pragma once

#include <QString>
#include <QStringList>

// What start-up knows before any window exists.

// The command line as one text: an argument that is empty or holds a blank
// or a double quote is put in double quotes, with "\" and '"' inside written
// "\\" and "\""; every other argument stands as it is. SplitJoinedCommandLine
// gives the same list back.
QString JoinCommandLine(const QStringList& arguments);

// The arguments of a text JoinCommandLine wrote, exactly as they were given.
QStringList SplitJoinedCommandLine(const QString& commandLine);

// Whether the command line asks for the randomizer run: "-randomizer"
// anywhere in it, in lower case.
bool IsRandomizerCommandLine(const QString& commandLine);

// The game folder Kelvaris starts with: the stored "CohPath", else the
// game's own "Installation Directory" under "Software\Cryptic\Coh".
QString StartGameFolder();
