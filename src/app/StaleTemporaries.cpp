#include "StaleTemporaries.h"

#include "FileRecord.h"
#include "GameFolders.h"
#include "PathUtils.h"
#include "modRegistry.h"

#include <QDateTime>
#include <QDirIterator>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace {

// Enough for any game's loose textures; a tree past this is left alone
// rather than holding up the start.
constexpr int kMostEntriesWalked = 200000;

const QStringList kNameFilters = {QStringLiteral("*.kelvaris-??????"),
                                  QStringLiteral("registry.reg.??????"),
                                  QStringLiteral("kelvaris.csv.??????")};

// Earlier versions replaced the settings and the catalogue through Qt's
// own temporary names ("registry.reg.Ab12Cd").
bool isOlderTemporaryName(const QString& name) {
    static const QRegularExpression pattern(
        QStringLiteral("^(registry\\.reg|kelvaris\\.csv)\\.[A-Za-z0-9]{6}$"));
    return pattern.match(name).hasMatch();
}

} // namespace

int RemoveStaleTemporaries(const QStringList& folders, int minimumAgeSeconds) {
    const QDateTime cutOff = QDateTime::currentDateTimeUtc().addSecs(-minimumAgeSeconds);
    int removed = 0;
    int walked = 0;
    for (const QString& folder : folders) {
        if (folder.isEmpty())
            continue;
        // Names are matched before anything is looked up about an entry, so
        // a library of thousands of pictures costs no more than its listing.
        QDirIterator it(folder, kNameFilters, QDir::Files | QDir::Hidden | QDir::System,
                        QDirIterator::Subdirectories);
        while (it.hasNext() && walked++ < kMostEntriesWalked) {
            it.next();
            const QFileInfo file = it.fileInfo();
            if (!IsKelvarisTemporaryName(file.fileName()) && !isOlderTemporaryName(file.fileName()))
                continue;
            if (file.isSymLink() || !file.isFile() || file.lastModified().toUTC() > cutOff)
                continue;
            if (QFile::remove(file.filePath()))
                ++removed;
        }
    }
    return removed;
}

int RemoveStaleTemporariesAtStart(const QString& gameFolder) {
    QStringList folders = GameWriteFolders(gameFolder);
    folders << QFileInfo(modRegistry::StoreFilePath()).absolutePath() << WorkFolder();
    return RemoveStaleTemporaries(folders);
}
