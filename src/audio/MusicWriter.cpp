#include "MusicWriter.h"

#include "MusicTables.h"
#include "app/FileRecord.h"
#include "app/GameFolders.h"
#include "app/GameManifest.h"
#include "app/PathUtils.h"

#include <QFileInfo>
#include <QSet>
#include <vector>

namespace {

constexpr qint64 kCopyBlockBytes = 16384;

} // namespace

bool CopySoundFile(const QString& Source, const QString& Target) {
    FileRecord source = OpenFileRecord(Source, kGenericRead, kShareRead, kOpenExisting);
    if (source.Handle == -1)
        return false;
    FileRecord target = OpenReplacingFileRecord(ResolveExistingCase(Target));
    if (target.Handle == -1) {
        CloseFileRecord(source);
        return false;
    }
    std::vector<char> block(kCopyBlockBytes);
    for (;;) {
        const qint64 got = ReadFileBytes(source, block.data(), kCopyBlockBytes);
        if (got < 0)
            target.Failed = true;
        if (got <= 0 || WriteFileBytes(target, block.data(), got) != got)
            break;
    }
    CloseFileRecord(source);
    return CommitFileRecord(target);
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
        for (const QString& file : target.files) {
            const QString path = GameFolder + u'/' + file;
            // The player's own music there is kept before it is replaced.
            const bool written =
                LiesBelow(path, GameFolder, kMusicFolder) &&
                GameManifest::KeepOriginal(GameFolder, ResolveExistingCase(path)) &&
                CopySoundFile(Source, path);
            if (written)
                GameManifest::Record(GameFolder, ResolveExistingCase(path));
            allWritten = written && allWritten;
        }
        if (allWritten)
            boxes[target.box] = Qt::PartiallyChecked;
    }
    return true;
}
