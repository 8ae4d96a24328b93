#pragma once

#include "texture/Catalogue.h"

#include <QByteArray>
#include <QByteArrayView>
#include <QList>
#include <QString>
#include <functional>
#include <memory>

// Writing "kelvaris.csv" in the form the catalogue reader reads: a line with
// the number of categories; per category a line with its quoted name and
// its number of textures, then one line per texture with its quoted name,
// width, height, quoted folder and quoted file name. Lines end with CR LF.

// The largest count the form holds (counts are 16-bit signed integers).
constexpr int kMaxCatalogueCount = 32767;

// True when the text survives a trip through a quoted field: no double
// quote, no line end.
bool IsCatalogueText(const QString& text);

// Writes the catalogue atomically (the old file stays whole until the new one
// is complete), making its folder when missing. Returns "" on success, else a
// message. Refuses, writing nothing, more than kMaxCatalogueCount categories or
// textures in a category, a text IsCatalogueText refuses, or a size outside
// 1..32767.
QString WriteCatalogue(const QString& fileName, const QList<CatalogueCategory>& categories);

// WriteCatalogue in steps, so the categories can be put into text on several
// threads: a category's lines, and whether it may hold something the
// catalogue cannot (which CatalogueFileWriter::Finish then looks for again in
// order, for its message).
struct CatalogueCategoryText {
    QByteArray text;
    bool doubtful = false;
};
CatalogueCategoryText FormatCatalogueCategory(const CatalogueCategory& category);

// The same text made a texture at a time, for textures held in another form
// than CatalogueEntry (the catalogue build keeps most names as the archives'
// bytes).
class CatalogueCategoryFormatter {
public:
    // The category's line, for `count` textures to follow; `room` is about
    // the bytes their lines take (more is made when it runs out).
    CatalogueCategoryFormatter(const QString& name, qsizetype count, qsizetype room);
    ~CatalogueCategoryFormatter();
    CatalogueCategoryFormatter(const CatalogueCategoryFormatter&) = delete;
    CatalogueCategoryFormatter& operator=(const CatalogueCategoryFormatter&) = delete;

    void Add(const CatalogueEntry& entry);
    // A texture whose file name, in UTF-8, is also its name; its folder is
    // UTF-8 too. Neither may hold a double quote or a line end: the caller
    // has checked them (IsCatalogueText), so they are copied unlooked at.
    void AddPlain(QByteArrayView file, int width, int height, QByteArrayView folder);
    // The text, and whether it may hold something the catalogue cannot.
    CatalogueCategoryText Take();

private:
    struct State;
    std::unique_ptr<State> state_;
};

// The write itself, a category at a time as the texts are made (on other
// threads): the file is written, and the disk started on it, while the rest
// are still being made. The old catalogue stays until Finish has found every
// text whole and written; an unfinished writer leaves it as it was.
class CatalogueFileWriter {
public:
    // Starts the file of `count` categories.
    CatalogueFileWriter(const QString& fileName, qsizetype count);
    ~CatalogueFileWriter();
    CatalogueFileWriter(const CatalogueFileWriter&) = delete;
    CatalogueFileWriter& operator=(const CatalogueFileWriter&) = delete;

    // The next category's text.
    void Append(const CatalogueCategoryText& text);
    // Puts the file in place; "" when it is, else the message WriteCatalogue
    // gives. `categories` are the ones the texts were made of.
    QString Finish(const QList<CatalogueCategory>& categories);
    // The same for `count` categories, made by `categories` only when a text
    // may hold something the catalogue cannot, to find it for the message.
    QString Finish(qsizetype count, const std::function<QList<CatalogueCategory>()>& categories);

private:
    struct State;
    std::unique_ptr<State> state_;
};
