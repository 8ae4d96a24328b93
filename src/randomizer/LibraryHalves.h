#pragma once

#include <QString>

struct ScreenTarget;

// The library of prepared backgrounds from which the randomizer run picks:
// one half for the login screen, one for the character-selection screen.

enum class LibraryHalf { Login, Character };

struct LibraryHalfInfo {
    const char* name;    // "login", "character"
    const char* caption; // the Randomizer tab's button
    const ScreenTarget& screen;
    const char* folder;   // below the game folder
    const char* lastPick; // the setting that remembers the randomizer's last pick
};

const LibraryHalfInfo& HalfInfo(LibraryHalf half);
// "login" or "character" (any letter case); nothing for another word.
bool HalfNamed(const QString& name, LibraryHalf& half);

// The half's folder in the game: game folder + "/Kelvaris/RandomHL/" ...
QString LibraryFolderOf(const QString& gameFolder, LibraryHalf half);
