#pragma once

#include <QWidget>

class QCheckBox;
class QLabel;
class QLineEdit;
class QTreeWidget;
class QPushButton;
class UiServices;

// The "Settings" tab: where the game is installed and the size of its screen,
// typed in, browsed for, or detected from the game's own registry keys; and
// whether written textures are compressed with NVIDIA's tool.
class SettingsTab : public QWidget {
    Q_OBJECT
public:
    SettingsTab(UiServices& ui, QWidget* parent = nullptr);

    QString GameFolder() const;
    void SetGameFolder(const QString& folder);
    QString ScreenWidthText() const;
    QString ScreenHeightText() const;
    bool CompressTextures() const;

    // Fills the folder and size from "Software\Cryptic\<key>" when the game's
    // key exists, and decides which controls may be edited.
    void DetectGame();

    void setAuto_Click();
    void setBrowse_Click();

    // Lists the installations found on this machine under "Installations
    // found"; the window runs it at start and the "Search again" button does.
    void FindInstallations();
    // Choosing a listed installation: its game folder into setCohPath, and
    // its screen size when its prefix has one.
    void setGames_Choose(int row);

Q_SIGNALS:
    // The game folder changed; the save buttons of several tabs depend on it.
    void GameFolderChanged();

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setManualControlsEnabled(bool enabled);

    UiServices& ui_;
    QLabel* setCohRegKey_;
    QLineEdit* setCohPath_;
    QPushButton* setBrowse_;
    QLineEdit* setWidth_;
    QLineEdit* setHeight_;
    QCheckBox* setAuto_;
    QCheckBox* setCompression_;
    QTreeWidget* setGames_;
    QPushButton* setSearch_;
};
