#include "MusicWriter.h"

#include "MusicTables.h"
#include "app/PathUtils.h"

#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QSet>

namespace {

constexpr qint64 kCopyBlockBytes = 16384;

} // namespace

bool CopySoundFile(const QString& Source, const QString& Target) {
    QFile source(Source);
    if (!QFileInfo(Source).isFile() || !source.open(QIODevice::ReadOnly))
        return false;
    QSaveFile target(ResolveExistingCase(Target));
    if (!target.open(QIODevice::WriteOnly))
        return false;
    char block[kCopyBlockBytes];
    for (;;) {
        const qint64 got = source.read(block, kCopyBlockBytes);
        if (got <= 0)
            break;
        target.write(block, got);
    }
    return target.commit();
}

bool WriteMusicTargets(const QString& Source, const QString& GameFolder, MusicBoxStates& boxes) {
    // Without a game folder the paths would start at the root of the disk.
    if (GameFolder.isEmpty() || !QFileInfo(GameFolder).isDir())
        return false;
    QSet<QString> madeFolders;
    for (const MusicTarget& target : MusicTargets()) {
        const bool ticked = boxes.value(target.box, Qt::Unchecked) == Qt::Checked;
        if ((ticked || !target.folderOnlyWhenTicked) && !madeFolders.contains(target.folder)) {
            MakePath(GameFolder + u'/' + target.folder);
            madeFolders.insert(target.folder);
        }
        if (!ticked)
            continue;
        // Every file is tried even after one failed.
        bool allWritten = true;
        for (const QString& file : target.files)
            allWritten = CopySoundFile(Source, GameFolder + u'/' + file) && allWritten;
        if (allWritten)
            boxes[target.box] = Qt::PartiallyChecked;
    }
    return true;
}
