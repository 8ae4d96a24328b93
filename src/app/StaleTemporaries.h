#pragma once

#include <QString>
#include <QStringList>

// Clearing away what a killed Kelvaris left behind: the temporary files of
// its replacing writes (see IsKelvarisTemporaryName), which a later run would
// otherwise never touch.

// Temporaries younger than this may belong to a Kelvaris running now.
constexpr int kStaleTemporarySeconds = 300;

// Removes Kelvaris's temporary files older than minimumAgeSeconds in each
// folder and, unless `foldersBelow` is false, the folders below it (symbolic
// links are not followed, and a very large tree is not walked to its end).
// Other files are never touched. Returns how many were removed.
int RemoveStaleTemporaries(const QStringList& folders,
                           int minimumAgeSeconds = kStaleTemporarySeconds,
                           bool foldersBelow = true);

// At start: the settings folder, the work folder and the folders of the
// game that Kelvaris writes into.
int RemoveStaleTemporariesAtStart(const QString& gameFolder);

// At a game start: only the folders a game start writes into (the two
// screens', the settings' and the game's own Kelvaris folder, without the
// folders below them). The window and the command line clear the rest when
// they start, so a game start never walks a library of thousands of pictures
// or the game's whole texture folder.
int RemoveStaleTemporariesAtGameStart(const QString& gameFolder);
