#include "LibraryOperations.h"

#include "LibraryFolder.h"
#include "RandomFile.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"
#include "image/FrameOverlay.h"
#include "image/LoadImage.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureReader.h"
#include "texture/TextureWriter.h"

#include <QFile>
#include <QFileInfo>

namespace {

const LibraryHalfInfo kHalves[] = {
    {"login", "Add to login screen", kLoginScreen, "/Kelvaris/RandomHL/", "RandomHL"},
    {"character", "Add to character selection screen", kCharacterScreen, "/Kelvaris/RandomHC/",
     "RandomHC"},
};

bool load(const LibraryAdd& add, const QString& FileName, bool last, BusyHost& busy,
          UiServices& ui) {
    if (add.load)
        return add.load(FileName, last);
    return LoadImage(FileName, *add.image, kScreenWidth, kScreenHeight, busy, ui);
}

} // namespace

const LibraryHalfInfo& HalfInfo(LibraryHalf half) {
    return kHalves[half == LibraryHalf::Login ? 0 : 1];
}

bool HalfNamed(const QString& name, LibraryHalf& half) {
    for (LibraryHalf candidate : {LibraryHalf::Login, LibraryHalf::Character})
        if (name.compare(QLatin1String(HalfInfo(candidate).name), Qt::CaseInsensitive) == 0) {
            half = candidate;
            return true;
        }
    return false;
}

QString LibraryFolderOf(const QString& gameFolder, LibraryHalf half) {
    return gameFolder + QString::fromLatin1(HalfInfo(half).folder);
}

bool WriteLibraryEntry(const LibraryAdd& add, const QString& FileName,
                       const TextureContext& context, BusyHost& busy, UiServices& ui) {
    const auto picture = add.frameFile.isEmpty() ? add.image : ApplyFrame(add.frameFile, add.image);
    const bool written =
        WriteTexture(TextureRequest::LibraryEntry(LibraryFolderOf(context.gameFolder, add.half),
                                                  FileName, *picture),
                     context, busy, ui);
    if (!written)
        ui.Message(WriteErrorText(), MsgIcon::Exclamation);
    return written;
}

bool AddPictureToLibrary(const LibraryAdd& add, const QString& PictureFile,
                         const TextureContext& context, BusyHost& busy, UiServices& ui) {
    // The name as the folder has it, so the library entry matches the file.
    const QFileInfo file(ResolveExistingCase(PictureFile));
    if (!file.isFile() || !load(add, file.filePath(), true, busy, ui))
        return false;
    return WriteLibraryEntry(add, file.fileName(), context, busy, ui);
}

int AddFolderToLibrary(const LibraryAdd& add, const QString& Folder, const TextureContext& context,
                       BusyHost& busy, UiServices& ui) {
    const FolderPictures pictures = ListFolderPictures(Folder);
    if (pictures.reachedLimit)
        ui.Message(QStringLiteral("Kelvaris will only process the first 1000 images."),
                   MsgIcon::None);
    const qsizetype count = pictures.names.size();
    int added = 0;
    for (qsizetype i = 0; i < count; ++i) {
        if (add.step)
            add.step(i + 1, count);
        const QString& name = pictures.names[i];
        if (load(add, Folder + u'/' + name, i + 1 == count, busy, ui) &&
            WriteLibraryEntry(add, name, context, busy, ui))
            ++added;
    }
    return added;
}

QStringList ListLibrary(const QString& gameFolder, LibraryHalf half) {
    return ListLibraryImages(ResolveExistingCase(LibraryFolderOf(gameFolder, half)));
}

int RemoveLibraryEntries(const QString& gameFolder, LibraryHalf half, const QStringList& names,
                         UiServices& ui) {
    const QString folder = ResolveExistingCase(LibraryFolderOf(gameFolder, half));
    int removed = 0;
    for (const QString& name : names) {
        // Only entries of this half: a name never leads out of its folder.
        if (!IsContainedRelative(name) || name.contains(u'/'))
            continue;
        if (QFile::remove(folder + u'/' + name))
            ++removed;
        else
            ui.Message(QStringLiteral("\"%1\" could not be deleted. Please check file "
                                      "permissions.")
                           .arg(folder + u'/' + name),
                       MsgIcon::Exclamation);
    }
    return removed;
}

QImage LibraryThumbnail(const QString& gameFolder, LibraryHalf half, const QString& name,
                        const QSize& size) {
    const TexturePicture picture =
        ReadTextureFile(ResolveExistingCase(LibraryFolderOf(gameFolder, half)) + u'/' + name);
    if (picture.image.isNull())
        return {};
    return picture.image.copy(0, 0, int(kScreenWidth), int(kScreenHeight))
        .scaled(size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
}

QString LastLibraryPick(LibraryHalf half) {
    return modRegistry::QueryValue(kSettingsKey, QString::fromLatin1(HalfInfo(half).lastPick));
}
