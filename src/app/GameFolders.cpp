#include "GameFolders.h"

#include "PathUtils.h"

QStringList GameWriteFolders(const QString& gameFolder) {
    if (gameFolder.isEmpty())
        return {};
    QStringList folders;
    for (const QString& below : {kTextureFolder, kMusicFolder, QStringLiteral("Kelvaris")})
        folders << ResolveExistingCase(gameFolder + u'/' + below);
    return folders;
}
