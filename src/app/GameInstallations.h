#pragma once

#include "GameRunner.h"

#include <QList>
#include <QSize>
#include <QString>
#include <optional>

// The copies of the game on this machine, found without the player typing a
// path: in $WINEPREFIX and ~/.wine, and in the prefixes of Lutris, Bottles
// (native and Flatpak), Steam and Heroic, in that order. Everything is only
// read.

struct GameInstallation {
    QString launcher; // "Wine", "Lutris", "Bottles", "Bottles (Flatpak)", "Steam", "Heroic"
    QString prefix;
    QString gameFolder;
    GameRunner runner; // how a program of the game folder is started
    std::optional<QSize> screen;
};

// Every installation, one per real game folder (the first place that leads
// to a folder keeps it).
QList<GameInstallation> FindGameInstallations();

// The Wine prefix a game folder lies in: the nearest ancestor of its real
// path (symbolic links resolved) holding both "drive_c" and "dosdevices";
// "" when the folder is not inside one.
QString WinePrefixOf(const QString& gameFolder);

// How to start a program of `gameFolder`: the runner of the launcher that
// keeps the folder's prefix, else the Wine on PATH. `prefix` receives the
// folder's prefix ("" when it lies in none).
GameRunner RunnerForGameFolder(const QString& gameFolder, QString* prefix = nullptr);
