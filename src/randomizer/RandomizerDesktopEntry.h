#pragma once

#include <QString>
#include <QStringList>

// Writes the player's own menu entry for starting the game through the
// randomizer, $XDG_DATA_HOME/applications/kelvaris-randomizer.desktop
// (normally ~/.local/share/applications/...): it runs `program -randomizer`
// followed by `clientArguments`, each quoted as desktop entries require, and
// shows Kelvaris's icon. `program` is the Kelvaris to run: a full path, or
// "kelvaris" for the one on PATH. The file is replaced whole or not at all.
// Returns the path written, or "" when an argument cannot be carried by a
// desktop entry (a control character other than a line break or tab) or the
// file could not be written.
QString WriteRandomizerDesktopEntry(const QStringList& clientArguments,
                                    const QString& program = QStringLiteral("kelvaris"));
