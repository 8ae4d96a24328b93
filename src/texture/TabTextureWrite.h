#pragma once

#include "TextureWriter.h"

class Form1;

// How the window's tabs write textures: with the work folder, the game folder
// and the compression setting the player chose.
TextureContext TextureContextFor(Form1& form);

// Ends a tab's texture write: clears the busy state a write that could not
// open its file leaves behind, and tells the player when the write failed.
void FinishTextureWrite(Form1& form, bool written);
