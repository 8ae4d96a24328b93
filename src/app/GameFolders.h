#pragma once

#include <QString>
#include <QStringList>

// The folders below the game folder that Kelvaris writes into, and nowhere
// else in the game: textures, music, and its library of prepared
// backgrounds. Names are matched without regard to letter case, as the game
// reads them under Wine.

inline const QString kTextureFolder = QStringLiteral("data/texture_library");
inline const QString kMusicFolder = QStringLiteral("data/sound/Ogg");
// The library halves: login screen, character screen.
inline const QString kLibraryFolders[] = {QStringLiteral("Kelvaris/RandomHL"),
                                          QStringLiteral("Kelvaris/RandomHC")};

// Every folder of a game where Kelvaris writes files, each with the
// temporary files of its writes: the three above and the library's parent.
QStringList GameWriteFolders(const QString& gameFolder);
