#pragma once

#include "image/LoadImage.h"

#include <QWidget>

struct ScreenTarget;
struct SharedImages;
class TabHost;
class PreviewBox;
class QCheckBox;
class QGroupBox;
class QLineEdit;
class QPushButton;
class QScrollBar;

// The "Screens" tab: pick a picture, see it in the preview, and write it as
// the game's login screen or character-selection background.
class ScreensTab : public QWidget {
    Q_OBJECT
public:
    ScreensTab(TabHost& host, SharedImages& images, QWidget* parent = nullptr);

    // The Screens rule of the window's UpdateButtons: both save buttons are
    // enabled when a game folder and a picture are chosen.
    void UpdateButtons(const QString& gameFolder);

    // Loads the picture into the screen image at 1024 x 768 and, with
    // DoPreviews, makes the previews; false (after the message) when it could
    // not be read.
    bool LoadScreenImage(const QString& FileName, bool DoPreviews = true);
    // How LoadScreenImage makes the previews from a newly loaded screen
    // picture, for a load done elsewhere (a folder added to the library).
    PreviewMaker ScreenPreviewMaker();

    // What the Randomizer tab shares with this tab: whether frames are laid
    // over written screens, the frame file for a screen, and the picture file
    // shown as chosen.
    bool FramesOn() const;
    QString FrameFile(const ScreenTarget& target) const;
    void SetImageFile(const QString& FileName);

    // Rebuilds the login and character previews (framed when frames are
    // shown in the preview) and repaints.
    void UpdatePreviews();

    // Lets the player pick a frame picture for the box; it must be 1024 x 768.
    void BrowseFrame(QLineEdit* box);

    // Opens the level adjustment for the current picture.
    void DisplayImageControls();

    void scrBrowse_Click();
    void scrSaveHL_Click();
    void scrSaveHC_Click();
    // The pointer over a save button shows what that button writes.
    void scrSaveHL_MouseMove();
    void scrSaveHC_MouseMove();
    void scrPreview_Click();
    void scrFrames_Click();
    void scrFramesPreview_Click();
    void BrowseHL_Click();
    void BrowseHC_Click();
    void adjBlack_Change();
    void adjWhite_Change();
    void adjApply_Click();
    void adjRevert_Click();
    void adjCancel_Click();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void save(QPushButton* button, QLineEdit* frameBox, const ScreenTarget& target);
    void showPreview(int which);
    void paintPreview();
    QWidget* buildFramesFrame();
    QWidget* buildAdjustmentFrame();
    void remakeWorkingPreview(bool adjusted);

    TabHost& host_;
    SharedImages& images_;
    QPushButton* scrBrowse_;
    QLineEdit* scrImage_;
    PreviewBox* scrPreview_;
    QPushButton* scrSaveHL_;
    QPushButton* scrSaveHC_;
    QCheckBox* scrFrames_;
    QCheckBox* scrFramesPreview_;
    QLineEdit* FrameHL_;
    QLineEdit* FrameHC_;
    QPushButton* BrowseHL_;
    QPushButton* BrowseHC_;
    QGroupBox* adjFrame_;
    QScrollBar* adjBlack_;
    QScrollBar* adjWhite_;
    QLineEdit* adjBlackDisplay_;
    QLineEdit* adjWhiteDisplay_;
};
