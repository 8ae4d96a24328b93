#pragma once

#include "OnlineDownloads.h"

#include <functional>

class BusyHost;
class UiServices;
class cDIBSection;
struct TextureContext;

// Writes finished downloads as textures the way every picture is written:
// loaded into `image` at the texture's size, then written with the texture
// context of that moment (the window's settings, or the command line's).
OnlineDownloads::TextureApplier MakeOnlineTextureApplier(cDIBSection& image,
                                                         std::function<TextureContext()> context,
                                                         BusyHost& busy, UiServices& ui);
