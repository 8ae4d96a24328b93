#pragma once

#include <QWidget>

struct ScreenTarget;
class Form1;
class QCheckBox;
class QLineEdit;
class QPushButton;
class ScreensTab;

// The "Randomizer" tab: adds pictures, one at a time or a whole folder, to
// the library of prepared backgrounds that each randomizer run draws from.
class RandomizerTab : public QWidget {
    Q_OBJECT
public:
    RandomizerTab(Form1& form, ScreensTab& screens, QWidget* parent = nullptr);

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

    // A library half and the button that adds to it.
    struct Half;

private:
    QPushButton* buttonFor(const Half& half) const;
    void save(const Half& half);
    void addRandomImage(const Half& half, const QString& FileName);

    Form1& form_;
    ScreensTab& screens_;
    QLineEdit* rndFile_;
    QPushButton* rndBrowse_;
    QCheckBox* rndFolder_;
    QPushButton* rndSaveHL_;
    QPushButton* rndSaveHC_;
};
