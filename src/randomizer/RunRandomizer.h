#pragma once

#include <QString>

class UiServices;

// One randomizer run at game start: for each screen whose library folder
// exists, a random prepared image (never the previous run's pick when another
// is there) is wrapped into the game's texture; then the chat client is
// started from the game folder with the command line's other arguments.
// `CommandLine` is the tool's whole command line after the program name.
void RunRandomizer(const QString& GameFolder, const QString& CommandLine, UiServices& ui);
