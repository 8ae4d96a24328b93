#pragma once

#include "LibraryOperations.h"

#include <QWidget>

class LibraryView;
class TabHost;
class QCheckBox;
class QLineEdit;
class QPushButton;
class ScreensTab;

// The "Randomizer" tab: adds pictures, one at a time or a whole folder, to
// the library of prepared backgrounds that each randomizer run draws from.
class RandomizerTab : public QWidget {
    Q_OBJECT
public:
    RandomizerTab(TabHost& host, ScreensTab& screens, QWidget* parent = nullptr);

    // The Randomizer rule of the window's UpdateButtons: both buttons are
    // enabled when a game folder and a picture (or folder) are chosen.
    void UpdateButtons(const QString& gameFolder);

    // Writes the picture now held in the screen image into the library half
    // under FileName (framed when frames are on).
    void AddRandomImageHL(const QString& FileName);
    void AddRandomImageHC(const QString& FileName);

    void rndBrowse_Click();
    void rndFolder_Click();
    void rndSaveHL_Click();
    void rndSaveHC_Click();
    // "Create game launcher": the player's menu entry for the randomizer start.
    void rndLauncher_Click();

    // Lists both halves of the library again (done whenever the tab shows).
    void RefreshLibrary();

protected:
    void showEvent(QShowEvent* event) override;

private:
    QPushButton* buttonFor(LibraryHalf half) const;
    LibraryAdd libraryAdd(LibraryHalf half) const;
    void save(LibraryHalf half);
    void addRandomImage(LibraryHalf half, const QString& FileName);

    TabHost& host_;
    ScreensTab& screens_;
    QLineEdit* rndFile_;
    QPushButton* rndBrowse_;
    QCheckBox* rndFolder_;
    QPushButton* rndSaveHL_;
    LibraryView* libraryHL_ = nullptr;
    LibraryView* libraryHC_ = nullptr;
    QLineEdit* rndClientArgs_ = nullptr;
    QPushButton* rndLauncher_ = nullptr;
    QPushButton* rndSaveHC_;
};
