#include "CatalogueWriter.h"

#include "app/FileRecord.h"
#include "app/PathUtils.h"

#include <QDir>
#include <cerrno>
#include <cstring>

namespace {

QByteArray quoted(const QString& text) {
    return '"' + text.toUtf8() + '"';
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
    QByteArray text = QByteArray::number(categories.size()) + "\r\n";
    for (const CatalogueCategory& category : categories) {
        text += quoted(category.name) + ',' + QByteArray::number(category.entries.size()) + "\r\n";
        for (const CatalogueEntry& entry : category.entries)
            text += quoted(entry.name) + ',' + QByteArray::number(entry.width) + ',' +
                    QByteArray::number(entry.height) + ',' + quoted(entry.folder) + ',' +
                    quoted(entry.file) + "\r\n";
    }
    QDir().mkpath(ReturnPath(fileName));
    if (!WriteFileAtomically(fileName, text))
        return QStringLiteral("The texture catalogue \"%1\" could not be written: %2")
            .arg(fileName, QString::fromLocal8Bit(std::strerror(errno)));
    return {};
}
