#pragma once

#include <QStringList>

// The pictures of a folder that the Randomizer tab adds to the library in one
// go: names whose last four characters, in lower case, are ".jpg", "jpeg",
// ".png", ".gif", ".bmp" or ".tga", in the order the folder lists them, hidden
// files left out.
struct FolderPictures {
    QStringList names;
    // True when listing stopped at the limit (the limit-th name was taken).
    bool reachedLimit = false;
};

constexpr int kFolderPictureLimit = 1000;

FolderPictures ListFolderPictures(const QString& Folder, int limit = kFolderPictureLimit);

// Whether a file name is one of the pictures above.
bool IsLibraryPictureName(const QString& name);
