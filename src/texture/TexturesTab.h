#pragma once

#include "CatalogueTextures.h"

#include <QWidget>

class QLabel;
class TabHost;
class QCheckBox;
class QComboBox;
class QLineEdit;
class QPushButton;

// The "Textures" tab: writes a picture of the player's choice, with an
// optional alpha mask, over any texture of the catalogue, restores the game's
// own texture by deleting the replacement, and builds the catalogue from the
// game's archives.
class TexturesTab : public QWidget {
    Q_OBJECT
public:
    explicit TexturesTab(TabHost& host, QWidget* parent = nullptr);

    // Writes the source picture (and the mask, when one is named) as texture
    // i of the loaded category. False when there is no point going on with
    // further textures: no game folder, or a picture that cannot be read
    // (both already told).
    bool WriteCustomTexture(int i);

    // The window's tab change: entering this tab (shown true) lists category
    // 0 and tells CatalogueReloaded; leaving it lets the next visit reload.
    void SSTab1_Click(bool shown);

    void texBrowse_Click();
    void texAlphaBrowse_Click();
    void texCategory_Click();
    void texSave_Click();
    void texReset_Click();
    void texBuild_Click();

    // The thumbnails of the source picture, the mask and the texture the
    // game has now at the chosen entry (with its size), or "the game's own".
    void UpdatePreviews();

Q_SIGNALS:
    // The shared catalogue lists now describe another category: a texture
    // chooser elsewhere (the Online tab's) goes back to its slot list.
    void CatalogueReloaded();

private:
    void reload(int category);
    CustomTexture source();
    bool writeAll() const;

    TabHost& host_;
    QLineEdit* texInput_;
    QPushButton* texBrowse_;
    QLineEdit* texAlpha_;
    QPushButton* texAlphaBrowse_;
    QComboBox* texCategory_;
    QComboBox* texTexture_;
    QCheckBox* texWriteAll_;
    QPushButton* texSave_;
    QPushButton* texReset_;
    QPushButton* texBuild_;
    QLabel* texPicturePreview_ = nullptr;
    QLabel* texMaskPreview_ = nullptr;
    QLabel* texInstalledPreview_ = nullptr;
    QLabel* texInstalledText_ = nullptr;
    static constexpr int kThumbnail = 96;
    bool tabOpen_ = false;
};
