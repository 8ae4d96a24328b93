#pragma once

#include "OnlineDownloads.h"

class Form1;

// Writes finished downloads as textures the way every tab writes pictures:
// loaded into the window's shared image at the texture's size, then written
// with the player's compression setting into the game folder.
OnlineDownloads::TextureApplier MakeOnlineTextureApplier(Form1& form);
