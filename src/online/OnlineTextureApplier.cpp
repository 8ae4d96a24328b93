#include "OnlineTextureApplier.h"

#include "image/LoadImage.h"
#include "image/cDIBSection.h"
#include "texture/TextureWriter.h"

OnlineDownloads::TextureApplier MakeOnlineTextureApplier(cDIBSection& image,
                                                         std::function<TextureContext()> context,
                                                         BusyHost& busy, UiServices& ui) {
    return [&image, context = std::move(context), &busy,
            &ui](const QString& TempFilePath, int Width, int Height, const QString& Path,
                 const QString& File) {
        // A download that is no picture has been reported by the loader; the
        // previous picture is not written in its place.
        if (!LoadImage(TempFilePath, image, Width, Height, busy, ui))
            return true;
        // The failure message is the downloads' own, shown once per slot.
        const TextureContext now = context();
        return WriteTexture(
            TextureRequest::OnlineSlot(now.gameFolder, Path, File, Width, Height, image), now, busy,
            ui);
    };
}
