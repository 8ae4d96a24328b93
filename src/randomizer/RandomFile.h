#pragma once

#include <QString>
#include <QStringList>
#include <functional>

// The most entries a library half is listed with; files past it are not
// considered for the pick.
constexpr int kLibraryListLimit = 30001;

// The ".dds" files of Folder (any letter case of the extension; hidden files
// and folders left out), in the order the directory lists them, at most
// `limit` of them. Only regular files (or links to them) of a library
// entry's possible size count: a FIFO, a device or a 0-byte file is never
// picked.
QStringList ListLibraryImages(const QString& Folder, int limit = kLibraryListLimit);

// A uniform random number in [0, 1).
using UniformRandom = std::function<double()>;

// A generator seeded from the seconds-since-midnight clock, as every pick is.
UniformRandom ClockSeededRandom();

// Picks a random ".dds" file of Folder (its name, no folder), avoiding the
// one stored under Key by the previous run: up to ten draws, and the tenth is
// kept even if it repeats the last pick. The pick is stored under Key; an
// empty library stores "" (which deletes the value) and returns "".
QString RandomFile(const QString& Folder, const QString& Key,
                   const UniformRandom& random = ClockSeededRandom());

// RandomFile's pick, avoiding `last`, without storing it: a game start
// stores its picks once the client is on its way.
QString PickRandomFile(const QString& Folder, const QString& last,
                       const UniformRandom& random = ClockSeededRandom());
