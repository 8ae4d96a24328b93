#pragma once

#include <QString>

// The name the desktop knows Kelvaris by: its desktop entry, its AppStream
// file and its icon are all called this, so the window, the menus and a
// randomizer launcher show the same picture.
inline const QString kApplicationId = QStringLiteral("io.github.kelvaris.Kelvaris");
