#include "OnlineTextureApplier.h"

#include "app/Form1.h"
#include "image/LoadImage.h"
#include "image/SharedImages.h"
#include "texture/Catalogue.h"
#include "texture/FormTextureWrite.h"

OnlineDownloads::TextureApplier MakeOnlineTextureApplier(Form1& form) {
    return [&form](const QString& TempFilePath, int Width, int Height, const QString& Path,
                   const QString& File) {
        cDIBSection& image = form.Images().cDib;
        // A download that is no picture has been reported by the loader; the
        // previous picture is not written in its place.
        if (!LoadImage(TempFilePath, image, Width, Height, form, form.Ui()))
            return true;
        // The failure message is the downloads' own, shown once per slot.
        return WriteFormTexture(form, TextureSaveFolder(form.GameFolder(), Path), File, File,
                                image, Width, Height, true, Width, Height, Path + u'/', false,
                                nullptr, false);
    };
}
