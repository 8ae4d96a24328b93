#pragma once

#include <QString>

class BusyHost;
class CatalogueLoader;
class UiServices;
struct SharedImages;
struct TextureContext;

// What the window gives its tabs: the game folder, the shared pictures and
// catalogue, the busy state, the message boxes and dialogs, the texture
// writer's settings and the one enabling procedure. Tabs know this, never the
// window class itself.
class TabHost {
public:
    virtual ~TabHost() = default;

    virtual QString GameFolder() const = 0;
    virtual SharedImages& Images() = 0;
    virtual CatalogueLoader& Catalogue() = 0;
    virtual BusyHost& Busy() = 0;
    virtual UiServices& Ui() = 0;
    // The texture writer's context as the Settings tab has it now.
    virtual TextureContext TextureWriteContext() const = 0;
    // The game's screen size as typed on the Settings tab.
    virtual QString ScreenWidthText() const = 0;
    virtual QString ScreenHeightText() const = 0;
    // The window's enabling procedure for the save buttons.
    virtual void UpdateButtons() = 0;
};
