#pragma once

#include <QList>
#include <QString>

// The texture catalogue: which game textures a player may replace, grouped
// into categories. Folders are "/"-separated and relative to the game's
// "data" folder; file names carry no ".texture" extension.

struct CatalogueEntry {
    QString name;
    int width = 0;
    int height = 0;
    QString folder;
    QString file;
};

struct CatalogueCategory {
    QString name;
    QList<CatalogueEntry> entries;
};

// A texture's line in the texture lists: "Clouds (512x256)".
QString CatalogueListLine(const QString& name, int width, int height);

// The text with every "/" turned into the file system's own separator. The
// game was built for "\"; on Linux the separator is "/", so the text comes
// back unchanged, which keeps game paths built from catalogue folders
// working on both.
QString SlashToBackslash(const QString& Text);

// True when a catalogue folder names a folder below the game's
// "data/texture_library" (the first component "texture_library" in any
// letter case, no "." or ".." and not absolute) and the file is a plain name.
// Neither may hold a line break or other control character.
bool IsSafeCatalogueEntry(const QString& folder, const QString& file);

// The folder rule alone.
bool IsTextureFolder(const QString& folder);

// The file rule alone.
bool IsSafeCatalogueFile(const QString& file);

// The folder a texture of `folder` is written into: game folder, "/data/",
// the folder and a final "/", with existing folders reused whatever their
// letter case. "" when the folder is not below "data/texture_library".
QString TextureSaveFolder(const QString& gameFolder, const QString& folder);

// The game file of a texture: game folder + "/data/" + folder + "/" + file +
// ".texture", matched to existing names without regard to letter case. ""
// when the folder or file is refused by IsSafeCatalogueEntry.
QString TextureGameFile(const QString& gameFolder, const QString& folder, const QString& file);
