#pragma once

#include "OnlineSettings.h"

#include <QStringList>
#include <QWidget>
#include <array>

class CatalogueLoader;
class OnlineDownloads;
class QComboBox;
class QGroupBox;
class QLabel;
class QLineEdit;
class QPushButton;
class UiServices;

// The "Online" tab: binds each of the five online slots to a game texture
// chosen from the catalogue and to the address of a picture on the web,
// downloads and applies them on request, and exports or imports the five
// bindings as "Kelvaris Textures.reg".
//
// It has two faces: the slot list ("Online Textures") and the texture
// chooser ("Destination"), switched by a row's "Pick..." on one side and by
// "Pick This Texture", "Clear Selection" or "Keep Current" on the other.
class OnlineTab : public QWidget {
    Q_OBJECT
public:
    // `catalogue` is the window's one catalogue loader, shared with the
    // Textures tab.
    OnlineTab(UiServices& ui, OnlineDownloads& downloads, CatalogueLoader& catalogue,
              QWidget* parent = nullptr);

    // The texts of the five address boxes, as typed (saved or not).
    QStringList Links() const;

    void webPick_Click(int n);
    void webCategory_Click();
    void webPickTexture_Click();
    void webClear_Click();
    void webCancel_Click();
    void webURL_Change(int n);
    void webDownload_Click();
    void webRegFile_Click();
    void webImport_Click();

    // Goes back from the texture chooser to the slot list.
    void showSlotList();

private:
    // One slot's row of the slot list.
    struct SlotRow {
        QLabel* webLabel = nullptr;
        QLineEdit* webURL = nullptr;
        QLineEdit* webFile = nullptr;
        QPushButton* webPick = nullptr;
    };

    QGroupBox* buildSlotList();
    QGroupBox* buildChooser();
    QGroupBox* buildWebOperations();
    // The slot the chooser was opened for, from the Tag of "Pick This
    // Texture"; -1 when the Tag names no slot.
    int editedSlot() const;
    void markRefused(int n);
    void setSlotActive(int n, bool Active);
    void downloadsFinished();
    void reloadSlotRows();

    UiServices& ui_;
    OnlineDownloads& downloads_;
    CatalogueLoader& catalogue_;

    std::array<SlotRow, kDownloadSlots> rows_;
    QGroupBox* webFileFrame_ = nullptr;
    QGroupBox* webTexFrame_ = nullptr;
    QComboBox* webCategory_ = nullptr;
    QComboBox* webTexture_ = nullptr;
    QPushButton* webPickTexture_ = nullptr;
    QPushButton* webClear_ = nullptr;
    QPushButton* webCancel_ = nullptr;
    QPushButton* webRegFile_ = nullptr;
    QPushButton* webImport_ = nullptr;
    QPushButton* webDownload_ = nullptr;
};
