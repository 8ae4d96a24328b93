#include "LibraryFolder.h"

#include <QDirIterator>

bool IsLibraryPictureName(const QString& name) {
    static const QStringList endings = {QStringLiteral(".jpg"), QStringLiteral("jpeg"),
                                        QStringLiteral(".png"), QStringLiteral(".gif"),
                                        QStringLiteral(".bmp"), QStringLiteral(".tga")};
    return endings.contains(name.right(4).toLower());
}

FolderPictures ListFolderPictures(const QString& Folder, int limit) {
    FolderPictures pictures;
    QDirIterator it(Folder, QDir::Files | QDir::NoDotAndDotDot);
    while (it.hasNext()) {
        it.next();
        if (!IsLibraryPictureName(it.fileName()))
            continue;
        pictures.names << it.fileName();
        if (pictures.names.size() >= limit) {
            pictures.reachedLimit = true;
            break;
        }
    }
    return pictures;
}
