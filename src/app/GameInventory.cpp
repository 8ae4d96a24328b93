#include "GameInventory.h"

#include "GameManifest.h"
#include "PathUtils.h"
#include "audio/MusicTables.h"
#include "randomizer/LibraryOperations.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/ScreenTargets.h"

#include <QFileInfo>
#include <QSet>

QList<InventoryFile> GameInventory(const QString& gameFolder) {
    QList<InventoryFile> present;
    if (gameFolder.isEmpty())
        return present;
    QSet<QString> seen;
    QSet<QString> written;
    for (const GameManifest::Entry& entry : GameManifest::Entries(gameFolder))
        written.insert(entry.relative.toLower());
    auto note = [&](const char* kind, const QString& relative) {
        const QString path = ResolveExistingCase(gameFolder + u'/' + relative);
        const QFileInfo file(path);
        if (!file.isFile() || seen.contains(path.toLower()))
            return;
        seen.insert(path.toLower());
        const QString inGame = path.mid(gameFolder.size() + 1);
        present.append({kind, inGame, file.size(), file.lastModified(),
                        QFileInfo(GameManifest::BackupPath(gameFolder, path)).isFile(),
                        written.contains(inGame.toLower()) || QLatin1String(kind) == u"library"});
    };
    for (const ScreenTarget* screen : {&kLoginScreen, &kCharacterScreen})
        note("screen", QString::fromLatin1(screen->folder).mid(1) +
                           QString::fromLatin1(screen->file) + QStringLiteral(".texture"));
    for (const CatalogueCategory& category : ReadCatalogue(CatalogueFile()).categories)
        for (const CatalogueEntry& entry : category.entries)
            if (IsSafeCatalogueEntry(entry.folder, entry.file))
                note("texture", QStringLiteral("data/") + entry.folder + u'/' + entry.file +
                                    QStringLiteral(".texture"));
    for (const MusicTarget& target : MusicTargets())
        for (const QString& file : target.files)
            note("music", file);
    for (LibraryHalf half : {LibraryHalf::Login, LibraryHalf::Character})
        for (const QString& name : ListLibrary(gameFolder, half))
            note("library", QString::fromLatin1(HalfInfo(half).folder).mid(1) + name);
    return present;
}
