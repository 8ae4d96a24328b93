#pragma once

#include <QString>
#include <QStringList>

// What start-up knows before any window exists.

// The command line as one text, each argument that holds a blank quoted.
QString JoinCommandLine(const QStringList& arguments);

// Whether the command line asks for the randomizer run: "-randomizer"
// anywhere in it, in lower case.
bool IsRandomizerCommandLine(const QString& commandLine);

// The game folder Kelvaris starts with: the stored "CohPath", else the
// game's own "Installation Directory" under "Software\Cryptic\Coh".
QString StartGameFolder();
