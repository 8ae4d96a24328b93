#include "Catalogue.h"

#include "app/PathUtils.h"
#include "app/RegText.h"

#include <QDir>

QString CatalogueListLine(const QString& name, int width, int height) {
    return name + QStringLiteral(" (") + QString::number(width) + u'x' + QString::number(height) +
           u')';
}

QString SlashToBackslash(const QString& Text) {
    return QDir::toNativeSeparators(Text);
}

bool IsTextureFolder(const QString& folder) {
    const QString firstComponent = QString(folder).replace(u'\\', u'/').section(u'/', 0, 0);
    return IsContainedRelative(folder) && IsStorableText(folder) &&
           firstComponent.compare(QStringLiteral("texture_library"), Qt::CaseInsensitive) == 0;
}

bool IsSafeCatalogueFile(const QString& file) {
    return IsContainedRelative(file) && IsStorableText(file) && !file.contains(u'/') &&
           !file.contains(u'\\');
}

bool IsSafeCatalogueEntry(const QString& folder, const QString& file) {
    return IsTextureFolder(folder) && IsSafeCatalogueFile(file);
}

QString TextureSaveFolder(const QString& gameFolder, const QString& folder) {
    if (gameFolder.isEmpty() || !IsTextureFolder(folder))
        return {};
    return ResolveExistingCase(gameFolder + QStringLiteral("/data/") + SlashToBackslash(folder) +
                               u'/');
}

QString TextureGameFile(const QString& gameFolder, const QString& folder, const QString& file) {
    if (gameFolder.isEmpty() || !IsSafeCatalogueEntry(folder, file))
        return {};
    return ResolveExistingCase(gameFolder + QStringLiteral("/data/") + SlashToBackslash(folder) +
                               u'/' + file + QStringLiteral(".texture"));
}
