#pragma once

#include <QString>

class cDIBSection;
struct CatalogueEntry;
struct ScreenTarget;

// One texture write: which picture goes where and how. The fields keep the
// names the writer's steps use; the named builders below make the requests
// the tabs, the command line and the randomizer need, so no caller lines up
// thirteen arguments by hand.
struct TextureRequest {
    // Folder and file name of what is written: SavePath + FileName +
    // ".texture" (Texture) or ".dds" (a library entry).
    QString SavePath;
    QString FileName;
    // The name inside the container: texPath + SaveFile + ".dds".
    QString SaveFile;
    QString texPath;
    // The picture, written Width x Height (its bottom row continues it when
    // it is shorter); the container announces texWidth x texHeight.
    const cDIBSection* cDib = nullptr;
    long Width = 0;
    long Height = 0;
    long texWidth = 0;
    long texHeight = 0;
    bool Texture = true;
    // With Alpha, the alpha channel is the blue of cDibAlpha.
    bool Alpha = false;
    const cDIBSection* cDibAlpha = nullptr;
    // Screens and library entries are compressed without mipmaps.
    bool IsLoginScreen = false;

    // A screen background (login or character selection) of the game.
    static TextureRequest Screen(const ScreenTarget& target, const QString& gameFolder,
                                 const cDIBSection& picture);
    // An entry of the randomizer's library: a bare DDS named FileName in
    // libraryFolder.
    static TextureRequest LibraryEntry(const QString& libraryFolder, const QString& FileName,
                                       const cDIBSection& picture);
    // A catalogue texture, with an alpha mask when `mask` is given. SavePath
    // is empty when the entry's folder is refused.
    static TextureRequest CatalogueTexture(const QString& gameFolder, const CatalogueEntry& entry,
                                           const cDIBSection& picture, const cDIBSection* mask);
    // An online slot's texture: as a catalogue texture without a mask.
    static TextureRequest OnlineSlot(const QString& gameFolder, const QString& Path,
                                     const QString& File, int Width, int Height,
                                     const cDIBSection& picture);
};
