#include "ScreenInstall.h"

#include "ScreenTargets.h"
#include "TextureWriter.h"
#include "app/UiServices.h"
#include "image/FrameOverlay.h"
#include "image/LevelAdjust.h"
#include "image/LoadImage.h"
#include "image/cDIBSection.h"

#include <memory>

bool WriteScreenPicture(const ScreenTarget& target, const cDIBSection& picture,
                        const TextureContext& context, BusyHost& busy, UiServices& ui) {
    const bool written = WriteTexture(TextureRequest::Screen(target, context.gameFolder, picture),
                                      context, busy, ui);
    if (!written)
        ui.Message(WriteErrorText(), MsgIcon::Exclamation);
    return written;
}

bool InstallScreen(const ScreenTarget& target, const QString& PictureFile,
                   const ScreenOptions& options, const TextureContext& context, BusyHost& busy,
                   UiServices& ui) {
    auto picture = std::make_shared<cDIBSection>();
    if (!LoadImage(PictureFile, *picture, kScreenWidth, kScreenHeight, busy, ui))
        return false;
    if (options.levels)
        AdjustLevels(*picture, options.black, options.white);
    const auto output =
        options.frameFile.isEmpty() ? picture : ApplyFrame(options.frameFile, picture);
    return WriteScreenPicture(target, *output, context, busy, ui);
}
