#pragma once

#include <QString>

class BusyHost;
class UiServices;
class cDIBSection;
struct ScreenTarget;
struct TextureContext;

// Replacing the game's login or character-selection background.

// What is done to the picture before it is written.
struct ScreenOptions {
    QString frameFile;   // a frame laid over the picture; "" for none
    bool levels = false; // stretch the tonal range from black to white
    short black = 0;
    short white = 255;
};

// Writes a picture already at the screen size as the target screen's
// texture. The player sees "Error writing image. Please check file
// permissions." when it could not be written.
bool WriteScreenPicture(const ScreenTarget& target, const cDIBSection& picture,
                        const TextureContext& context, BusyHost& busy, UiServices& ui);

// Loads PictureFile at the screen size, adjusts its levels and lays the
// frame over it as the options say, and writes it as the target screen.
bool InstallScreen(const ScreenTarget& target, const QString& PictureFile,
                   const ScreenOptions& options, const TextureContext& context, BusyHost& busy,
                   UiServices& ui);
