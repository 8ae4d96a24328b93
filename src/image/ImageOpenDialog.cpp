#include "ImageOpenDialog.h"

#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"

QString BrowseImage(UiServices& ui) {
    FileDialogRequest request;
    request.startFolder = modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastImageDir"));
    request.filter = QStringLiteral("Image files (bmp,jpg,jpeg,png,gif,tga)|"
                                    "*.bmp;*.jpg;*.jpeg;*.png;*.gif;*.tga");
    const QString chosen = ui.OpenFile(request);
    if (!chosen.isEmpty())
        modRegistry::SetValue(kSettingsKey, QStringLiteral("LastImageDir"), ReturnPath(chosen));
    return chosen;
}
