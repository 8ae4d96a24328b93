#pragma once

#include <QString>
#include <QStringList>

class UiServices;

// One randomizer run at game start: for each screen whose library folder
// exists, a random prepared image (never the previous run's pick when another
// is there) is wrapped into the game's texture; then the chat client is
// started from the game folder with the tool's other arguments, each exactly
// as given. `Arguments` are the tool's arguments after the program name.
void RunRandomizer(const QString& GameFolder, const QStringList& Arguments, UiServices& ui);

// The same run for a command line JoinCommandLine made of the arguments.
void RunRandomizer(const QString& GameFolder, const QString& CommandLine, UiServices& ui);
