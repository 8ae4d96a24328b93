#include "LoadImage.h"

#include "PictureDecoder.h"
#include "app/BusyHost.h"
#include "app/NumberText.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "cDIBSection.h"

#include <QImage>
#include <algorithm>
#include <chrono>

namespace {
// The busy state's range for loading one picture; the steps below are its
// positions.
constexpr long kLoadSteps = 10;
} // namespace

namespace {

// The end of a load, once the picture is decoded and resampled (or not):
// the picture handed over, the previews made, the failure told, and the
// busy state left.
bool finishLoad(const QString& name, std::optional<cDIBSection> picture, cDIBSection& dibDest,
                BusyHost& busy, UiServices& ui, const PreviewMaker& makePreviews) {
    const bool success = picture.has_value();
    if (success)
        dibDest = std::move(*picture);
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

QString resamplingText(const QString& name) {
    return QStringLiteral("Resampling ") + name + QStringLiteral("...");
}

void enterLoading(const QString& name, BusyHost& busy) {
    busy.SetBusy(true, false, kLoadSteps,
                 QStringLiteral("Loading ") + name + QStringLiteral("..."));
}

} // namespace

bool LoadImage(const QString& FileName, cDIBSection& dibDest, long ImageWidth, long ImageHeight,
               BusyHost& busy, UiServices& ui, const PreviewMaker& makePreviews) {
    const QString name = FileNamePart(FileName);
    enterLoading(name, busy);

    // The name is used as given: lower-casing it would lose the file on a
    // file system that tells letter cases apart.
    std::optional<cDIBSection> resampled;
    const QImage picture = DecodePicture(FileName);
    if (!picture.isNull()) {
        busy.ShowProgress(4, resamplingText(name));
        // Resampled from the decoded rows themselves.
        resampled.emplace();
        if (!resampled->CreateResampled(picture, ImageHeight, ImageWidth))
            resampled.reset();
    }
    return finishLoad(name, std::move(resampled), dibDest, busy, ui, makePreviews);
}

std::optional<cDIBSection> PreparePicture(const QString& FileName, long ImageWidth,
                                          long ImageHeight) {
    const QImage picture = DecodePicture(FileName);
    cDIBSection resampled;
    if (picture.isNull() || !resampled.CreateResampled(picture, ImageHeight, ImageWidth))
        return std::nullopt;
    return resampled;
}

std::optional<cDIBSection> AwaitPreparedImage(const QString& FileName, PendingPicture& pending,
                                              BusyHost& busy) {
    enterLoading(FileNamePart(FileName), busy);
    // Window events go on being handled while the picture is finished.
    while (pending.wait_for(std::chrono::milliseconds(20)) != std::future_status::ready)
        busy.ShowProgress(0, QString());
    return pending.get();
}

bool FinishPreparedImage(const QString& FileName, std::optional<cDIBSection> picture,
                         cDIBSection& dibDest, BusyHost& busy, UiServices& ui,
                         const PreviewMaker& makePreviews) {
    const QString name = FileNamePart(FileName);
    if (picture)
        busy.ShowProgress(4, resamplingText(name));
    return finishLoad(name, std::move(picture), dibDest, busy, ui, makePreviews);
}

int PreviewWidth(const QString& widthText, const QString& heightText) {
    const double width = LeadingNumber(widthText);
    const double height = LeadingNumber(heightText);
    if (width > 0 && height > 0)
        return int(std::clamp<long long>(RoundHalfEven(width / height * kPreviewHeight), 10, 425));
    return 240;
}
