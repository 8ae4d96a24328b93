#pragma once

#include "GameRunner.h"

#include <QList>
#include <QString>

// The Wine prefixes the player's launchers keep, each with the Wine that
// launcher starts programs in it with. Only launcher files are read, never
// written; a missing or malformed file yields no prefix. Every folder and
// file list is read only up to a bound, so a strange home never holds up the
// start of the game.

struct LauncherPrefix {
    QString launcher; // "Wine", "Lutris", "Bottles", "Bottles (Flatpak)", "Steam", "Heroic"
    QString prefix;   // the folder holding drive_c
    GameRunner runner;
    // The game program the launcher starts, when it names one (Lutris's
    // "game: exe:"); "" otherwise.
    QString programHint;
};

// $WINEPREFIX, then ~/.wine: started with the Wine on PATH.
QList<LauncherPrefix> PlainWinePrefixes();

// The prefixes of the games in ~/.config/lutris/games/*.yml and
// ~/.local/share/lutris/games/*.yml, with their Lutris Wine runner
// (~/.local/share/lutris/runners/wine/<version>/bin/wine) when it is there.
QList<LauncherPrefix> LutrisPrefixes();

// The bottles of ~/.local/share/bottles/bottles (then, when `flatpak` is set,
// of ~/.var/app/com.usebottles.bottles/data/bottles/bottles): each folder with
// a bottle.yml and a drive_c. A native bottle runs with its runner's
// bin/wine when that is there, otherwise through bottles-cli; a Flatpak
// bottle always through the Flatpak's bottles-cli.
QList<LauncherPrefix> BottlesPrefixes(bool flatpak);

// The compatibility prefixes (steamapps/compatdata/<id>/pfx) of every Steam
// library of ~/.steam/steam and ~/.local/share/Steam, with the Proton build
// the prefix's config_info or version names, else the Wine on PATH.
QList<LauncherPrefix> SteamPrefixes();

// The prefixes below ~/Games/Heroic/Prefixes, with the Wine a game of
// ~/.config/heroic/GamesConfig/*.json sets for that prefix, else the Wine on
// PATH.
QList<LauncherPrefix> HeroicPrefixes();

// All of the above, in that order, one entry per real prefix folder. A
// prefix that a launcher keeps is given with that launcher's Wine even when
// $WINEPREFIX or ~/.wine leads to it too.
QList<LauncherPrefix> FindLauncherPrefixes();

// The folder with every symbolic link resolved; the cleaned path when it
// does not exist.
QString RealFolder(const QString& folder);

// Whether `folder` is a Wine prefix: it holds a "drive_c" folder.
bool IsWinePrefix(const QString& folder);

// The Wine of a Proton build folder: files/bin/wine (newer builds) or
// dist/bin/wine (older ones); "" when neither is there.
QString ProtonWine(const QString& protonFolder);

// Up to `most` subfolders of `folder`, sorted by name, hidden ones included.
QStringList SubfoldersOf(const QString& folder, int most = 1000);

// Up to `most` files of `folder` ending in `suffix`, sorted by name.
QStringList FilesOf(const QString& folder, const QString& suffix, int most = 1000);
