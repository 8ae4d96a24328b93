#pragma once

#include "texture/Catalogue.h"

#include <QList>
#include <QString>
#include <QStringList>

// Reading "kelvaris.csv": the number of categories C; then per category its
// name and the number of textures T, followed by T records of name, width,
// height, folder and file name (see InputFields for the field syntax).
//
// A catalogue that cannot be read whole gives what was read before the
// problem plus one message naming the problem. Entries whose folder or file
// would leave the game's data folder, or whose size is not positive, are left
// out and named in the message; the others stay usable. Counts are never
// trusted for allocation: lists grow only as records are actually read.

// What the texture lists show: every category name, and the selected
// category's textures as five parallel arrays in file order.
struct CatalogueSelection {
    QStringList categories;
    QStringList names;
    QList<int> widths;
    QList<int> heights;
    QStringList paths;
    QStringList files;
    QString error; // "" when the file was read whole and every entry accepted

    int Count() const { return int(names.size()); }
    QString ListLine(int i) const { return CatalogueListLine(names[i], widths[i], heights[i]); }
    CatalogueEntry Entry(int i) const {
        return {names[i], widths[i], heights[i], paths[i], files[i]};
    }
    QList<CatalogueEntry> Entries() const {
        QList<CatalogueEntry> entries;
        for (int i = 0; i < Count(); ++i)
            entries.append(Entry(i));
        return entries;
    }
};

// Reads the whole catalogue file and keeps the textures of category
// `category` only (none when it is out of range).
CatalogueSelection ReadCatalogueSelection(const QString& fileName, int category);

struct CatalogueContents {
    QList<CatalogueCategory> categories;
    QString error; // as for CatalogueSelection
};

// Reads every category with its textures.
CatalogueContents ReadCatalogue(const QString& fileName);
