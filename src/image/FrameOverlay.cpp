#include "FrameOverlay.h"

#include "PictureDecoder.h"
#include "cDIBSection.h"

#include <algorithm>

void OverlayFrame(cDIBSection& frame, const cDIBSection& picture) {
    const long width = std::min({kFrameWidth, frame.Width(), picture.Width()});
    const long height = std::min({kFrameHeight, frame.Height(), picture.Height()});
    for (long y = 0; y < height; ++y) {
        std::uint8_t* over = frame.Row(y);
        const std::uint8_t* under = picture.Row(y);
        for (long offset = 0; offset < width * 3; offset += 3) {
            if (over[offset] == 255 && over[offset + 1] == 0 && over[offset + 2] == 255) {
                over[offset] = under[offset];
                over[offset + 1] = under[offset + 1];
                over[offset + 2] = under[offset + 2];
            }
        }
    }
}

std::shared_ptr<cDIBSection> ApplyFrame(const QString& FrameFile,
                                        const std::shared_ptr<cDIBSection>& screenImage) {
    const QImage picture = FrameFile.isEmpty() ? QImage() : DecodePicture(FrameFile);
    auto framed = std::make_shared<cDIBSection>();
    if (picture.isNull() || !framed->CreateFromPicture(picture))
        return screenImage;
    OverlayFrame(*framed, *screenImage);
    return framed;
}
