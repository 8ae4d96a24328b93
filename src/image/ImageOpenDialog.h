#pragma once

#include <QString>

class UiServices;

// The image-open dialog every tab that opens pictures shares: it starts in
// the folder last chosen from ("LastImageDir"), offers the picture kinds
// Kelvaris reads and remembers the folder of the choice. The chosen path,
// or "" when the player cancelled (nothing is remembered then).
QString BrowseImage(UiServices& ui);
