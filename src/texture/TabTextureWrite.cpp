#include "TabTextureWrite.h"

#include "app/Form1.h"
#include "app/PathUtils.h"
#include "app/SettingsTab.h"
#include "app/UiServices.h"

TextureContext TextureContextFor(Form1& form) {
    TextureContext context;
    context.workFolder = WorkFolder();
    context.gameFolder = form.GameFolder();
    context.compress = form.Settings().CompressTextures();
    return context;
}

void FinishTextureWrite(Form1& form, bool written) {
    if (form.IsBusy())
        form.SetBusy(false, false, 0, QString());
    if (!written)
        form.Ui().Message(QStringLiteral("Error writing image. Please check file permissions."),
                          MsgIcon::Exclamation);
}
