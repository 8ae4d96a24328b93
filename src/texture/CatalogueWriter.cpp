#include "CatalogueWriter.h"

#include "app/FileRecord.h"
#include "app/PathUtils.h"

#include <QDir>
#include <cerrno>
#include <charconv>
#include <cstring>

namespace {

// Appends the text in double quotes, as UTF-8; plain ASCII, which nearly
// every name is, is copied without a conversion of its own.
void appendQuoted(QByteArray& bytes, const QString& text) {
    bytes += '"';
    const QChar* chars = text.constData();
    const qsizetype size = text.size();
    qsizetype ascii = 0;
    while (ascii < size && chars[ascii].unicode() < 0x80)
        ++ascii;
    if (ascii == size) {
        const qsizetype at = bytes.size();
        bytes.resize(at + size);
        char* out = bytes.data() + at;
        for (qsizetype i = 0; i < size; ++i)
            out[i] = char(chars[i].unicode());
    } else {
        bytes += text.toUtf8();
    }
    bytes += '"';
}

void appendNumber(QByteArray& bytes, qsizetype value) {
    char digits[24];
    const auto end = std::to_chars(digits, digits + sizeof digits, value).ptr;
    bytes.append(digits, end - digits);
}

bool isSize(int value) {
    return value >= 1 && value <= kMaxCatalogueCount;
}

// The first reason the categories cannot be written, or "".
QString problemWith(const QList<CatalogueCategory>& categories) {
    if (categories.size() > kMaxCatalogueCount)
        return QStringLiteral("it would hold more than %1 categories.").arg(kMaxCatalogueCount);
    for (const CatalogueCategory& category : categories) {
        if (!IsCatalogueText(category.name))
            return QStringLiteral("the category name \"%1\" holds a double quote or a line end.")
                .arg(category.name);
        if (category.entries.size() > kMaxCatalogueCount)
            return QStringLiteral("the category \"%1\" would hold more than %2 textures.")
                .arg(category.name)
                .arg(kMaxCatalogueCount);
        for (const CatalogueEntry& entry : category.entries) {
            if (!IsCatalogueText(entry.name) || !IsCatalogueText(entry.folder) ||
                !IsCatalogueText(entry.file))
                return QStringLiteral("the texture \"%1\" holds a double quote or a line end.")
                    .arg(entry.name);
            if (!isSize(entry.width) || !isSize(entry.height))
                return QStringLiteral("the texture \"%1\" has a size outside 1 to %2.")
                    .arg(entry.name)
                    .arg(kMaxCatalogueCount);
        }
    }
    return {};
}

} // namespace

bool IsCatalogueText(const QString& text) {
    return !text.contains(u'"') && !text.contains(u'\r') && !text.contains(u'\n');
}

QString WriteCatalogue(const QString& fileName, const QList<CatalogueCategory>& categories) {
    const QString problem = problemWith(categories);
    if (!problem.isEmpty())
        return QStringLiteral("The texture catalogue \"%1\" was not written: %2")
            .arg(fileName, problem);
    qsizetype textures = 0;
    for (const CatalogueCategory& category : categories)
        textures += category.entries.size();
    QByteArray text;
    text.reserve(64 + 64 * categories.size() + 160 * textures);
    appendNumber(text, categories.size());
    text += "\r\n";
    for (const CatalogueCategory& category : categories) {
        appendQuoted(text, category.name);
        text += ',';
        appendNumber(text, category.entries.size());
        text += "\r\n";
        for (const CatalogueEntry& entry : category.entries) {
            appendQuoted(text, entry.name);
            text += ',';
            appendNumber(text, entry.width);
            text += ',';
            appendNumber(text, entry.height);
            text += ',';
            appendQuoted(text, entry.folder);
            text += ',';
            appendQuoted(text, entry.file);
            text += "\r\n";
        }
    }
    QDir().mkpath(ReturnPath(fileName));
    if (!WriteFileAtomically(fileName, text))
        return QStringLiteral("The texture catalogue \"%1\" could not be written: %2")
            .arg(fileName, QString::fromLocal8Bit(std::strerror(errno)));
    return {};
}
