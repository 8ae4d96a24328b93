#pragma once

#include "LibraryHalves.h"
#include "image/LoadImage.h"

#include <QImage>
#include <QString>
#include <QStringList>
#include <functional>
#include <memory>

class BusyHost;
class UiServices;
struct ScreenTarget;
struct TextureContext;

// Adding pictures to the library's halves and taking them out.

// How pictures are added to a half.
struct LibraryAdd {
    LibraryHalf half = LibraryHalf::Login;
    QString frameFile; // a frame laid over each picture; "" for none
    // Where each picture is loaded, at the screen size.
    std::shared_ptr<cDIBSection> image;
    // Given the last picture of a folder once it is loaded, to make previews
    // of it (the Screens tab shows the last picture added).
    PreviewMaker lastPreviews;
    // Told before each picture of a folder, with its file: the tab shows
    // "Image i of n".
    std::function<void(qsizetype i, qsizetype n, const QString& FileName)> step;
    // How many pictures of a folder are decoded and resampled at once: 0 for
    // one per processor core, 1 for one after the other.
    int workers = 0;
};

// Writes the picture now in `add.image`, framed as asked, as the library
// entry FileName. "Error writing image. Please check file permissions." when
// it could not be written.
bool WriteLibraryEntry(const LibraryAdd& add, const QString& FileName,
                       const TextureContext& context, BusyHost& busy, UiServices& ui);

// Loads one picture and adds it under its own file name.
bool AddPictureToLibrary(const LibraryAdd& add, const QString& PictureFile,
                         const TextureContext& context, BusyHost& busy, UiServices& ui);

// Adds the pictures of a folder in the order it lists them, at most 1000
// (the player is told when there are more); a picture that cannot be loaded
// is reported and passed over. Pictures are decoded and resampled ahead on
// `add.workers` threads, a few at a time, and still loaded, reported and
// written one by one in the folder's order. A cancel request stops the
// batch before the next picture is written. Returns how many were added.
int AddFolderToLibrary(const LibraryAdd& add, const QString& Folder, const TextureContext& context,
                       BusyHost& busy, UiServices& ui);

// The entries of a half, in the order the folder lists them.
QStringList ListLibrary(const QString& gameFolder, LibraryHalf half);

// Deletes the named entries of a half; each one that cannot be deleted is
// reported. Returns how many were removed.
int RemoveLibraryEntries(const QString& gameFolder, LibraryHalf half, const QStringList& names,
                         UiServices& ui);

// The entry's picture as the game shows it (the top 1024 x 768 of the
// library's 1024 x 1024 image), fitted into `size`; null when it cannot be
// read.
QImage LibraryThumbnail(const QString& gameFolder, LibraryHalf half, const QString& name,
                        const QSize& size);

// The entry the last randomizer start picked for the half ("" for none).
QString LastLibraryPick(LibraryHalf half);
