#include "TextureRequest.h"

#include "Catalogue.h"
#include "ScreenTargets.h"

TextureRequest TextureRequest::Screen(const ScreenTarget& target, const QString& gameFolder,
                                      const cDIBSection& picture) {
    TextureRequest request;
    const QString file = QString::fromLatin1(target.file);
    request.SavePath = gameFolder + QString::fromLatin1(target.folder);
    request.FileName = file;
    request.SaveFile = file;
    request.texPath = QString::fromLatin1(target.texPath);
    request.cDib = &picture;
    request.Width = kScreenTextureSize;
    request.Height = kScreenTextureSize;
    request.texWidth = kScreenWidth;
    request.texHeight = kScreenHeight;
    request.IsLoginScreen = true;
    return request;
}

TextureRequest TextureRequest::LibraryEntry(const QString& libraryFolder, const QString& FileName,
                                            const cDIBSection& picture) {
    TextureRequest request;
    request.SavePath = libraryFolder;
    request.FileName = FileName;
    request.SaveFile = QStringLiteral("coh");
    request.cDib = &picture;
    request.Width = kScreenTextureSize;
    request.Height = kScreenTextureSize;
    request.Texture = false;
    request.IsLoginScreen = true;
    return request;
}

TextureRequest TextureRequest::CatalogueTexture(const QString& gameFolder,
                                                const CatalogueEntry& entry,
                                                const cDIBSection& picture,
                                                const cDIBSection* mask) {
    TextureRequest request =
        OnlineSlot(gameFolder, entry.folder, entry.file, entry.width, entry.height, picture);
    request.Alpha = mask != nullptr;
    request.cDibAlpha = mask;
    return request;
}

TextureRequest TextureRequest::OnlineSlot(const QString& gameFolder, const QString& Path,
                                          const QString& File, int Width, int Height,
                                          const cDIBSection& picture) {
    TextureRequest request;
    request.SavePath = TextureSaveFolder(gameFolder, Path);
    request.FileName = File;
    request.SaveFile = File;
    request.texPath = Path + u'/';
    request.cDib = &picture;
    request.Width = Width;
    request.Height = Height;
    request.texWidth = Width;
    request.texHeight = Height;
    return request;
}
