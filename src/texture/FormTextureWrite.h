#pragma once

#include "TextureWriter.h"

class Form1;

// Texture writes started from the window's tabs (Screens, Randomizer, Textures,
// Online)
// share their surroundings: the work folder, the game folder every file must
// stay in, the compression switch of the Settings tab, the window's busy
// state and its message boxes.

// The message a tab shows for a texture that could not be written.
QString WriteErrorText();

// The writer's context as the Settings tab has it now.
TextureContext FormTextureContext(Form1& form);

// WriteTexture with the window's context, busy state and message boxes. The
// busy state is left whatever the outcome (a write that could not open its
// file returns from the writer still busy). The caller shows WriteErrorText()
// on a false result.
bool WriteFormTexture(Form1& form, const QString& SavePath, const QString& SaveFile,
                      const QString& FileName, const cDIBSection& cDib, long Width, long Height,
                      bool Texture, long texWidth, long texHeight, const QString& texPath,
                      bool Alpha, const cDIBSection* cDibAlpha, bool IsLoginScreen);
