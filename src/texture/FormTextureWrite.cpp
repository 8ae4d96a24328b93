#include "FormTextureWrite.h"

#include "app/Form1.h"
#include "app/PathUtils.h"
#include "app/SettingsTab.h"

QString WriteErrorText() {
    return QStringLiteral("Error writing image. Please check file permissions.");
}

TextureContext FormTextureContext(Form1& form) {
    TextureContext context;
    context.workFolder = WorkFolder();
    context.gameFolder = form.GameFolder();
    context.compress = form.Settings().CompressTextures();
    return context;
}

bool WriteFormTexture(Form1& form, const QString& SavePath, const QString& SaveFile,
                      const QString& FileName, const cDIBSection& cDib, long Width, long Height,
                      bool Texture, long texWidth, long texHeight, const QString& texPath,
                      bool Alpha, const cDIBSection* cDibAlpha, bool IsLoginScreen) {
    const bool written = WriteTexture(SavePath, SaveFile, FileName, cDib, Width, Height, Texture,
                                      texWidth, texHeight, texPath, Alpha, cDibAlpha, IsLoginScreen,
                                      FormTextureContext(form), form, form.Ui());
    if (form.IsBusy())
        form.SetBusy(false, false, 0, QString());
    return written;
}
