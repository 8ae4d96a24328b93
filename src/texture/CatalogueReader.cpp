#include "CatalogueReader.h"

#include "app/FileRecord.h"
#include "app/RegText.h"
#include "texture/InputFields.h"

#include <QFileInfo>

namespace {

// Far above any real catalogue (every interface texture of the game fits in
// about two megabytes); it keeps a stray huge file from being read at all.
constexpr qint64 kMaxCatalogueBytes = 32 * 1024 * 1024;

// What the parser keeps besides a category index.
constexpr int kAllCategories = -1;
constexpr int kNoCategory = -2;

class CatalogueParser {
public:
    CatalogueParser(QByteArray text, QString fileName, int keep)
        : fields_(std::move(text)), fileName_(std::move(fileName)), keep_(keep) {}

    CatalogueContents Parse();

private:
    bool readCount(qint16& value, const QString& what);
    bool readText(QString& value, const QString& what);
    bool readRecord(CatalogueEntry& entry, const QString& category, int index, int count);
    void fail(const QString& problem);
    void refuse(const CatalogueEntry& entry);

    InputFields fields_;
    QString fileName_;
    int keep_;
    QString error_;
    int refused_ = 0;
    QString firstRefused_;
};

void CatalogueParser::fail(const QString& problem) {
    error_ = QStringLiteral("The texture catalogue \"%1\" %2").arg(fileName_, problem);
}

void CatalogueParser::refuse(const CatalogueEntry& entry) {
    if (refused_++ == 0)
        firstRefused_ = QStringLiteral("\"%1\" (%2x%3, \"%4\", \"%5\")")
                            .arg(entry.name, QString::number(entry.width),
                                 QString::number(entry.height), entry.folder, entry.file);
}

bool CatalogueParser::readText(QString& value, const QString& what) {
    switch (fields_.ReadText(value)) {
    case InputFields::Status::Ok:
        return true;
    case InputFields::Status::Unclosed:
        fail(QStringLiteral("has a quoted text that is never closed, at line %1.")
                 .arg(fields_.Line()));
        return false;
    default:
        fail(QStringLiteral("ends before %1.").arg(what));
        return false;
    }
}

bool CatalogueParser::readCount(qint16& value, const QString& what) {
    switch (fields_.ReadInteger(value)) {
    case InputFields::Status::Ok:
        if (value >= 0)
            return true;
        fail(QStringLiteral("gives a negative number for %1, at line %2.")
                 .arg(what, QString::number(fields_.Line())));
        return false;
    case InputFields::Status::NotNumber:
    case InputFields::Status::OutOfRange:
        fail(QStringLiteral("has no number from 0 to 32767 where %1 belongs, at line %2.")
                 .arg(what, QString::number(fields_.Line())));
        return false;
    case InputFields::Status::Unclosed:
        fail(QStringLiteral("has a quoted text that is never closed, at line %1.")
                 .arg(fields_.Line()));
        return false;
    case InputFields::Status::End:
        break;
    }
    fail(QStringLiteral("ends before %1.").arg(what));
    return false;
}

bool CatalogueParser::readRecord(CatalogueEntry& entry, const QString& category, int index,
                                 int count) {
    const QString where = QStringLiteral(" of texture %1 of %2 in \"%3\"")
                              .arg(QString::number(index + 1), QString::number(count), category);
    qint16 width = 0;
    qint16 height = 0;
    if (!readText(entry.name, QStringLiteral("the name") + where))
        return false;
    // A size may be written negative; the record is read whole and then
    // refused, so the next record is still found.
    InputFields::Status status = fields_.ReadInteger(width);
    if (status == InputFields::Status::Ok)
        status = fields_.ReadInteger(height);
    if (status != InputFields::Status::Ok) {
        if (status == InputFields::Status::End)
            fail(QStringLiteral("ends before the size") + where + u'.');
        else if (status == InputFields::Status::Unclosed)
            fail(QStringLiteral("has a quoted text that is never closed, at line %1.")
                     .arg(fields_.Line()));
        else
            fail(QStringLiteral("has no number from -32768 to 32767 for the size") + where +
                 QStringLiteral(", at line %1.").arg(fields_.Line()));
        return false;
    }
    entry.width = width;
    entry.height = height;
    return readText(entry.folder, QStringLiteral("the folder") + where) &&
           readText(entry.file, QStringLiteral("the file name") + where);
}

CatalogueContents CatalogueParser::Parse() {
    CatalogueContents contents;
    qint16 categoryCount = 0;
    QString first;
    if (InputFields(fields_).ReadText(first) == InputFields::Status::End)
        fail(QStringLiteral("is empty."));
    else if (readCount(categoryCount, QStringLiteral("the number of categories"))) {
        for (int c = 0; c < categoryCount; ++c) {
            CatalogueCategory category;
            qint16 textureCount = 0;
            const QString which = QStringLiteral("category %1 of %2").arg(c + 1).arg(categoryCount);
            if (!readText(category.name, QStringLiteral("the name of ") + which))
                break;
            if (!readCount(textureCount,
                           QStringLiteral("the number of textures in \"%1\"").arg(category.name)))
                break;
            const bool keep = keep_ == kAllCategories || keep_ == c;
            bool complete = true;
            for (int t = 0; t < textureCount && complete; ++t) {
                CatalogueEntry entry;
                complete = readRecord(entry, category.name, t, textureCount);
                if (!complete)
                    continue;
                // Every category is checked, so the message is the same
                // whichever category is selected.
                if (entry.width <= 0 || entry.height <= 0 || !IsStorableText(entry.name) ||
                    !IsSafeCatalogueEntry(entry.folder, entry.file))
                    refuse(entry);
                else if (keep)
                    category.entries.append(std::move(entry));
            }
            contents.categories.append(std::move(category));
            if (!complete)
                break;
        }
    }
    QStringList problems;
    if (!error_.isEmpty())
        problems.append(error_);
    if (refused_ > 0)
        problems.append(QStringLiteral("The texture catalogue \"%1\" lists %2 texture(s) whose "
                                       "folder is not below the game's data/texture_library, "
                                       "whose name, folder or file name holds a line break or "
                                       "leaves that folder, or whose size is not positive; "
                                       "they were left out. The first is %3.")
                            .arg(fileName_, QString::number(refused_), firstRefused_));
    contents.error = problems.join(u'\n');
    return contents;
}

CatalogueContents parseFile(const QString& fileName, int keep) {
    const QFileInfo info(fileName);
    if (!info.exists())
        return {{}, QStringLiteral("The texture catalogue \"%1\" was not found.").arg(fileName)};
    if (!info.isFile())
        return {
            {},
            QStringLiteral("The texture catalogue \"%1\" is not a regular file.").arg(fileName)};
    if (info.size() > kMaxCatalogueBytes)
        return {
            {},
            QStringLiteral("The texture catalogue \"%1\" is too large to be one.").arg(fileName)};
    const std::optional<QByteArray> text = ReadRegularFile(fileName, kMaxCatalogueBytes);
    if (!text)
        return {{},
                QStringLiteral("The texture catalogue \"%1\" could not be read.").arg(fileName)};
    return CatalogueParser(*text, fileName, keep).Parse();
}

} // namespace

CatalogueSelection ReadCatalogueSelection(const QString& fileName, int category) {
    const CatalogueContents contents = parseFile(fileName, category < 0 ? kNoCategory : category);
    CatalogueSelection selection;
    selection.error = contents.error;
    for (qsizetype c = 0; c < contents.categories.size(); ++c) {
        selection.categories.append(contents.categories[c].name);
        if (c != category)
            continue;
        for (const CatalogueEntry& entry : contents.categories[c].entries) {
            selection.names.append(entry.name);
            selection.widths.append(entry.width);
            selection.heights.append(entry.height);
            selection.paths.append(entry.folder);
            selection.files.append(entry.file);
        }
    }
    return selection;
}

CatalogueContents ReadCatalogue(const QString& fileName) {
    return parseFile(fileName, kAllCategories);
}
