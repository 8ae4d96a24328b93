#pragma once

#include "cDIBSection.h"

#include <memory>

// The bitmaps the tabs share, held by the window.
struct SharedImages {
    // The picture a tab loads to write as a texture (Textures, Online,
    // Randomizer), and its alpha mask.
    cDIBSection cDib;
    cDIBSection cDibMask;

    // The Screens tab's picture at the game's screen size, and what its save
    // buttons write: the screen image itself, or the framed copy.
    std::shared_ptr<cDIBSection> screenImage = std::make_shared<cDIBSection>();
    std::shared_ptr<cDIBSection> outputImage = screenImage;

    // The previews, 180 rows high and previewWidth wide: the unframed source,
    // the login and character previews and the one on show (which may be the
    // same bitmap as either).
    std::shared_ptr<cDIBSection> previewSource = std::make_shared<cDIBSection>();
    std::shared_ptr<cDIBSection> previewHL = std::make_shared<cDIBSection>();
    std::shared_ptr<cDIBSection> previewHC = std::make_shared<cDIBSection>();
    std::shared_ptr<cDIBSection> previewOnShow = std::make_shared<cDIBSection>();
    // While the level adjustment is open: a copy of the unframed preview
    // with the levels being tried.
    std::shared_ptr<cDIBSection> previewWorking = std::make_shared<cDIBSection>();
    int previewWidth = 240;
    int previewLeft = 0;
    // Which preview is on show: 1 login, 2 character, anything else neither.
    int previewShown = 0;
};
