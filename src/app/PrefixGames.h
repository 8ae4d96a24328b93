#pragma once

#include <QList>
#include <QSize>
#include <QString>
#include <optional>

// Where the game lies inside one Wine prefix.

struct PrefixGame {
    QString gameFolder;
    // The game's own "screenX" and "screenY" when the prefix holds both.
    std::optional<QSize> screen;
};

// The game folders of a prefix: each existing "Installation Directory" of
// the prefix's user.reg under Software\Cryptic\<key> (the Windows path made
// the prefix's Linux one, found in any letter case); when there is none, the
// folder of `programHint` when it names a game program; when that is not
// one either, every folder a bounded search of drive_c finds a game program
// in. The search goes at most four folders deep, reads at most 20,000
// entries, passes over drive_c/windows, and follows no symbolic link that
// leads out of the prefix.
QList<PrefixGame> GamesInPrefix(const QString& prefix, const QString& programHint = {});

// Whether a file name is one of the game's programs: cityofheroes.exe,
// cityofvillains.exe or paragonchat.exe, in any letter case.
bool IsGameProgramName(const QString& fileName);
