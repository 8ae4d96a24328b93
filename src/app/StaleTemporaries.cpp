#include "StaleTemporaries.h"

#include "FileRecord.h"
#include "GameFolders.h"
#include "PathUtils.h"
#include "modRegistry.h"
#include "texture/ScreenTargets.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>

namespace {

// Enough for any game's loose textures; the rest of a folder past this many
// entries is left alone rather than holding up the start.
constexpr int kMostEntriesWalked = 200000;

// Whether the name may be a temporary of ours: cheap, on the name's bytes,
// for every name of the folders; the full tests follow for those it passes.
// Earlier versions replaced the settings and the catalogue through Qt's own
// temporary names ("registry.reg.Ab12Cd").
bool mayBeTemporary(QByteArrayView name) {
    if (name.size() < 7)
        return false;
    const QByteArrayView stem = name.chopped(6);
    return stem.endsWith(kTemporaryMarker) || stem == "registry.reg." || stem == "kelvaris.csv.";
}

bool isOlderTemporaryName(const QString& name) {
    const qsizetype stem = name.size() - 7;
    if (stem < 1 || name[stem] != u'.' || !EndsInSixLettersOrDigits(name))
        return false;
    const QStringView front = QStringView(name).first(stem);
    return front == u"registry.reg" || front == u"kelvaris.csv";
}

// Where the settings are written.
QString settingsFolder() {
    return QFileInfo(modRegistry::StoreFilePath()).absolutePath();
}

} // namespace

int RemoveStaleTemporaries(const QStringList& folders, int minimumAgeSeconds, bool foldersBelow) {
    const QDateTime cutOff = QDateTime::currentDateTimeUtc().addSecs(-minimumAgeSeconds);
    int removed = 0;
    for (const QString& folder : folders) {
        int budget = kMostEntriesWalked;
        for (const QString& path : FindFilesBelow(folder, mayBeTemporary, budget, foldersBelow)) {
            const QFileInfo file(path);
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
    folders << settingsFolder() << WorkFolder();
    return RemoveStaleTemporaries(folders);
}

int RemoveStaleTemporariesAtGameStart(const QString& gameFolder) {
    QStringList folders = {settingsFolder()};
    if (!gameFolder.isEmpty()) {
        folders << ResolveExistingCase(gameFolder + QStringLiteral("/Kelvaris"));
        for (const ScreenTarget& screen : {kLoginScreen, kCharacterScreen})
            folders << ResolveExistingCase(gameFolder + QString::fromLatin1(screen.folder));
    }
    return RemoveStaleTemporaries(folders, kStaleTemporarySeconds, false);
}
