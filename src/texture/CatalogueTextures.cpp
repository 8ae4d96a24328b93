#include "CatalogueTextures.h"

#include "TextureWriter.h"
#include "app/GameManifest.h"
#include "app/UiServices.h"
#include "image/LoadImage.h"

#include <QFile>
#include <QFileInfo>

QString RestoreOneQuestion() {
    return QStringLiteral("This will REMOVE the custom image you have\r\n"
                          "placed in the selected Texture!\r\n\r\nAre you sure?");
}

QString RestoreAllQuestion() {
    return QStringLiteral("This will REMOVE the custom images you have\r\n"
                          "placed in the WHOLE Category!\r\n\r\nAre you sure?");
}

QString NoGameFolderText() {
    return QStringLiteral("No game folder is set. Please choose it on the Settings tab first.");
}

bool WriteCatalogueTexture(const CatalogueEntry& entry, const CustomTexture& source,
                           const TextureContext& context, BusyHost& busy, UiServices& ui) {
    if (context.gameFolder.isEmpty()) {
        ui.Message(NoGameFolderText(), MsgIcon::Exclamation);
        return false;
    }
    const bool useMask = !source.mask.isEmpty();
    const TextureRequest request = TextureRequest::CatalogueTexture(
        context.gameFolder, entry, *source.image, useMask ? source.maskImage : nullptr);
    if (request.SavePath.isEmpty() || !IsSafeCatalogueEntry(entry.folder, entry.file)) {
        ui.Message(QStringLiteral("The texture \"%1\" was not written: the catalogue places it "
                                  "outside the game's data folder.")
                       .arg(entry.name),
                   MsgIcon::Exclamation);
        return true;
    }
    if (!LoadImage(source.picture, *source.image, entry.width, entry.height, busy, ui))
        return false;
    if (useMask && !LoadImage(source.mask, *source.maskImage, entry.width, entry.height, busy, ui))
        return false;
    if (!WriteTexture(request, context, busy, ui))
        ui.Message(WriteErrorText(), MsgIcon::Exclamation);
    return true;
}

void WriteCatalogueTextures(const QList<CatalogueEntry>& entries, const CustomTexture& source,
                            const TextureContext& context, BusyHost& busy, UiServices& ui) {
    if (context.gameFolder.isEmpty()) {
        ui.Message(NoGameFolderText(), MsgIcon::Exclamation);
        return;
    }
    // Each texture reports its own failure and the run goes on; a texture
    // whose picture did not load is not written at all.
    for (const CatalogueEntry& entry : entries)
        WriteCatalogueTexture(entry, source, context, busy, ui);
}

QList<CatalogueEntry> ReplacedTextures(const QString& gameFolder,
                                       const QList<CatalogueEntry>& entries) {
    QList<CatalogueEntry> replaced;
    for (const CatalogueEntry& entry : entries) {
        const QString path = TextureGameFile(gameFolder, entry.folder, entry.file);
        if (!path.isEmpty() && QFileInfo(path).isFile())
            replaced.append(entry);
    }
    return replaced;
}

int RestoreCatalogueTextures(const QString& gameFolder, const QList<CatalogueEntry>& entries,
                             UiServices& ui) {
    int removed = 0;
    for (const CatalogueEntry& entry : ReplacedTextures(gameFolder, entries)) {
        const QString path = TextureGameFile(gameFolder, entry.folder, entry.file);
        // The file it replaced comes back when Kelvaris kept one.
        if (GameManifest::Restore(gameFolder, path))
            ++removed;
        else
            ui.Message(QStringLiteral("\"%1\" could not be deleted. Please check file "
                                      "permissions.")
                           .arg(path),
                       MsgIcon::Exclamation);
    }
    return removed;
}
