#pragma once

#include <QString>
#include <memory>

class cDIBSection;

// Frames are 1024 x 768 pictures laid over the screen picture; their pixels
// of exactly #ff00ff are holes through which the picture shows.
constexpr long kFrameWidth = 1024;
constexpr long kFrameHeight = 768;

// Replaces every pixel of the frame that is exactly blue 255, green 0,
// red 255 by the picture's pixel at the same place, over the frame's
// 1024 x 768 (or less, where either bitmap is smaller). No blending.
void OverlayFrame(cDIBSection& frame, const cDIBSection& picture);

// The bitmap to write for the screen picture under the frame file: a new
// framed bitmap, or, when the file cannot be decoded (no name, missing,
// not a picture), the screen image itself, without a message.
std::shared_ptr<cDIBSection> ApplyFrame(const QString& FrameFile,
                                        const std::shared_ptr<cDIBSection>& screenImage);
