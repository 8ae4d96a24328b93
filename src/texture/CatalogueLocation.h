#pragma once

#include <QString>

// Where "kelvaris.csv" is found. A player's own catalogue (built from the
// game's archives, or edited by hand) wins over the one shipped with Kelvaris.

// The player's own catalogue: $XDG_CONFIG_HOME/kelvaris/kelvaris.csv (by
// default ~/.config/kelvaris/kelvaris.csv), whether it exists or not.
QString UserCatalogueFile();

// The shipped catalogue: beside the program, else in ../share/kelvaris/ of
// an installed program. When neither exists, the path beside the program,
// so a message can name where it was expected.
QString ShippedCatalogueFile();

// The catalogue the texture lists use: the player's own if it exists, else
// the shipped one.
QString CatalogueFile();
