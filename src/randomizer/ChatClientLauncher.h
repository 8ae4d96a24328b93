#pragma once

#include <QString>

class UiServices;

// The Wine prefix a game folder lies in: the nearest ancestor folder holding
// both "drive_c" and "dosdevices"; "" when the folder is not inside one.
QString WinePrefixOf(const QString& gameFolder);

// Starts "paragonchat.exe" of the game folder through Wine, in the game
// folder, with Arguments (as one command-line text) after it, and does not
// wait for it. A missing client or a missing Wine is told to the player.
// True when the client was started.
bool LaunchChatClient(const QString& GameFolder, const QString& Arguments, UiServices& ui);
