#pragma once

#include "clsEncoderOGG.h"

#include <QList>
#include <QWidget>
#include <functional>
#include <memory>

class BusyHost;
class QCheckBox;
class QLineEdit;
class QPushButton;
class UiServices;
class clsWinampPlugin;

// The "Music" tab: picks a sound file, converts it once to Ogg Vorbis and
// writes it under every ticked BoomBox track, login theme and Pocket D group.
class MusicTab : public QWidget {
    Q_OBJECT
public:
    // `gameFolder` gives the game folder at the moment of saving.
    MusicTab(UiServices& ui, BusyHost& busy, std::function<QString()> gameFolder,
             QWidget* parent = nullptr);
    ~MusicTab() override;

    // The Music part of the window's enabling procedure: "Save selected
    // tracks" is enabled when a source is shown and some box is ticked.
    void UpdateSaveButton();

    // Where the encoder finds libogg and libvorbis; set before the first
    // browse (tests point it at a missing library).
    void SetEncoderLibraries(const OggLibraryNames& names) { libraryNames_ = names; }

    void sndBrowse_Click();
    void sndFolder_Click();
    void sndSave_Click();

Q_SIGNALS:
    // A box or the source changed; the window re-runs its enabling procedure.
    void ButtonsMayChange();

private:
    void buildTab();
    QList<QCheckBox*> trackBoxes() const;
    bool initialiseMusic();

    UiServices& ui_;
    BusyHost& busy_;
    std::function<QString()> gameFolder_;
    OggLibraryNames libraryNames_;
    std::unique_ptr<clsWinampPlugin> decoder_;
    std::unique_ptr<clsEncoderOGG> encoder_;
    bool musicInitialised_ = false;

    QLineEdit* sndFile_ = nullptr;
    QPushButton* sndBrowse_ = nullptr;
    QCheckBox* sndFolder_ = nullptr;
    QList<QCheckBox*> sndBoomBox_;
    QCheckBox* sndHeroLogin_ = nullptr;
    QCheckBox* sndVillainLogin_ = nullptr;
    QCheckBox* sndDanceFloor_ = nullptr;
    QCheckBox* sndBlueSide_ = nullptr;
    QCheckBox* sndRedSide_ = nullptr;
    QPushButton* sndSave_ = nullptr;
};
