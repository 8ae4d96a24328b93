#pragma once

#include <QWidget>

class Form1;
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
    // Where the tab sits in SSTab1; entering it reloads the catalogue.
    static constexpr int kTabIndex = 3;

    explicit TexturesTab(Form1& form, QWidget* parent = nullptr);

    // Writes the source picture (and the mask, when one is named) as texture
    // i of the loaded category. False when there is no point going on with
    // further textures: no game folder, or a picture that cannot be read
    // (both already told).
    bool WriteCustomTexture(int i);

    // SSTab1's tab change: entering this tab lists category 0 and closes the
    // Online tab's texture chooser; leaving it lets the next visit reload.
    void SSTab1_Click(int index);

    void texBrowse_Click();
    void texAlphaBrowse_Click();
    void texCategory_Click();
    void texSave_Click();
    void texReset_Click();
    void texBuild_Click();

private:
    void reload(int category);
    bool writeAll() const;

    Form1& form_;
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
    bool tabOpen_ = false;
};
