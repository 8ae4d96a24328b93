#include "LoadImage.h"

#include "PictureDecoder.h"
#include "app/BusyHost.h"
#include "app/NumberText.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "cDIBSection.h"

#include <algorithm>

namespace {
// The busy state's range for loading one picture; the steps below are its
// positions.
constexpr long kLoadSteps = 10;
} // namespace

bool LoadImage(const QString& FileName, cDIBSection& dibDest, long ImageWidth, long ImageHeight,
               BusyHost& busy, UiServices& ui, const PreviewMaker& makePreviews) {
    const QString name = FileNamePart(FileName);
    busy.SetBusy(true, false, kLoadSteps,
                 QStringLiteral("Loading ") + name + QStringLiteral("..."));

    // The name is used as given: lower-casing it would lose the file on a
    // file system that tells letter cases apart.
    bool success = false;
    const QImage picture = DecodePicture(FileName);
    if (!picture.isNull()) {
        cDIBSection decoded;
        if (decoded.CreateFromPicture(picture)) {
            busy.ShowProgress(4, QStringLiteral("Resampling ") + name + QStringLiteral("..."));
            if (auto resampled = decoded.Resample(ImageHeight, ImageWidth)) {
                dibDest = std::move(*resampled);
                success = true;
            }
        }
    }

    if (success && makePreviews) {
        busy.ShowProgress(6,
                          QStringLiteral("Creating preview for ") + name + QStringLiteral("..."));
        makePreviews(dibDest);
        busy.ShowProgress(9, QString());
    }
    if (!success)
        ui.Message(QStringLiteral("Image could not be loaded."), MsgIcon::Exclamation);

    busy.SetBusy(false, false, 0, QString());
    return success;
}

int PreviewWidth(const QString& widthText, const QString& heightText) {
    const double width = LeadingNumber(widthText);
    const double height = LeadingNumber(heightText);
    if (width > 0 && height > 0)
        return int(std::clamp<long long>(RoundHalfEven(width / height * kPreviewHeight), 10, 425));
    return 240;
}
