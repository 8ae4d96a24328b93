#pragma once

#include <QString>
#include <QStringList>

class UiServices;

// Starts "paragonchat.exe" of the game folder with the Wine of the
// installation the folder belongs to (a Lutris runner, a bottle's runner or
// bottles-cli, a Proton build, else the Wine on PATH), in the game folder,
// with `Arguments` handed to the client exactly as given, and does not wait
// for it. A game folder reached through a symbolic link belongs to the
// prefix of its real path. A missing client, or a missing Wine, Bottles or
// Flatpak, is told to the player. True when the client was started.
bool LaunchChatClient(const QString& GameFolder, const QStringList& Arguments, UiServices& ui);
