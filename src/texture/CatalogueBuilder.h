#pragma once

#include "texture/Catalogue.h"

#include <QList>
#include <QString>
#include <QStringList>

class BusyHost;

// Building the player's own texture catalogue from the game's archives: every
// interface texture (below "texture_library/GUI/") with its real size, one
// category per folder ("GUI/Icons/Powers"), categories and textures in name
// order without regard to letter case, merged with the shipped catalogue,
// and written to UserCatalogueFile().

struct CatalogueBuildResult {
    bool written = false; // the player's catalogue was replaced
    QString message;      // what to tell the player; "" when nothing was done
};

// The one call behind the Textures tab's button. Runs in the busy state
// (cancellable, with progress); does nothing when the host is already busy.
// A cancelled or failed build leaves the player's catalogue as it was.
CatalogueBuildResult BuildCatalogueFromGame(const QString& gameFolder, BusyHost& host);

// Every "*.pigg" file below the game folder, whatever its letter case, in
// path order.
QStringList FindGameArchives(const QString& gameFolder);

// Fits the categories into the catalogue's 16-bit counts: a category of more
// than 32767 textures is split into parts named "Name", "Name (2)", ...; past
// 32767 categories the rest is dropped. Returns how many textures were
// dropped.
int FitCatalogueCounts(QList<CatalogueCategory>& categories);
