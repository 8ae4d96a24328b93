#pragma once

#include "cDIBSection.h"

#include <QString>
#include <functional>
#include <future>
#include <optional>

class BusyHost;
class UiServices;

// Called by LoadImage, between its progress steps, with the freshly
// resampled picture: the Screens tab makes and paints its previews here.
using PreviewMaker = std::function<void(const cDIBSection& image)>;

// Reads a picture file into dibDest, resampled to ImageWidth x ImageHeight,
// showing the busy state with the file's name. With makePreviews set, it is
// also given the picture to build the previews from. On failure the player
// sees "Image could not be loaded." and the result is false; dibDest is left
// as it was.
bool LoadImage(const QString& FileName, cDIBSection& dibDest, long ImageWidth, long ImageHeight,
               BusyHost& busy, UiServices& ui, const PreviewMaker& makePreviews = {});

// The work of LoadImage that needs no window: the picture file decoded and
// resampled to ImageWidth x ImageHeight; nothing when it could not be
// decoded. Safe on any thread.
std::optional<cDIBSection> PreparePicture(const QString& FileName, long ImageWidth,
                                          long ImageHeight);

// A picture being prepared on another thread.
using PendingPicture = std::future<std::optional<cDIBSection>>;

// LoadImage for a picture prepared elsewhere, in two halves. The first
// enters the same busy state and waits for the picture, the window kept
// answering; the second hands it over with the same progress, previews and
// message, and leaves the busy state. Between them the caller may settle
// what must come before the message.
std::optional<cDIBSection> AwaitPreparedImage(const QString& FileName, PendingPicture& pending,
                                              BusyHost& busy);
bool FinishPreparedImage(const QString& FileName, std::optional<cDIBSection> picture,
                         cDIBSection& dibDest, BusyHost& busy, UiServices& ui,
                         const PreviewMaker& makePreviews = {});

// The Screens tab's previews are 180 rows high and as wide as the game's
// screen is in proportion (rounded, halves to even), 10 to 425 pixels;
// 240 when the width or height typed in the settings is not above 0.
int PreviewWidth(const QString& widthText, const QString& heightText);
constexpr int kPreviewHeight = 180;
