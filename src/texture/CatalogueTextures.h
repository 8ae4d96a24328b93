#pragma once

#include "Catalogue.h"

#include <QList>
#include <QString>

class BusyHost;
class UiServices;
class cDIBSection;
struct TextureContext;

// Replacing catalogue textures with the player's pictures, and restoring
// the game's own.

// What to write: the source picture and its optional alpha mask (grayscale,
// black transparent), and where they are loaded.
struct CustomTexture {
    QString picture;
    QString mask; // "" for none
    cDIBSection* image = nullptr;
    cDIBSection* maskImage = nullptr;
};

// Loads the picture (and mask) at the entry's size and writes the texture.
// Messages as the player sees them: no game folder, a texture placed outside
// the game's texture library, a picture that could not be loaded, a failed
// write. False only when a picture could not be loaded or there is no game
// folder, which ends a run over a whole category.
bool WriteCatalogueTexture(const CatalogueEntry& entry, const CustomTexture& source,
                           const TextureContext& context, BusyHost& busy, UiServices& ui);

// Every entry in turn (sizes differ, so the picture is loaded again for
// each); each reports its own failure and the run goes on. Only a missing
// game folder stops it, told once.
void WriteCatalogueTextures(const QList<CatalogueEntry>& entries, const CustomTexture& source,
                            const TextureContext& context, BusyHost& busy, UiServices& ui);

// The entries whose game file has been replaced (a file is there).
QList<CatalogueEntry> ReplacedTextures(const QString& gameFolder,
                                       const QList<CatalogueEntry>& entries);

// Deletes each entry's replacement, so the game shows its own texture again.
// A file that cannot be deleted is reported. Returns how many were removed.
int RestoreCatalogueTextures(const QString& gameFolder, const QList<CatalogueEntry>& entries,
                             UiServices& ui);

// The confirmations asked before restoring one texture or a whole category.
QString RestoreOneQuestion();
QString RestoreAllQuestion();

QString NoGameFolderText();
