#pragma once

#include "BusyHost.h"
#include "TabHost.h"
#include "image/SharedImages.h"

#include <QStringList>
#include <QWidget>
#include <functional>
#include <memory>

class CatalogueLoader;
class CreditsTab;
class OnlineDownloads;
class MusicTab;
class OnlineTab;
class QProgressBar;
class RandomizerTab;
class QPushButton;
class QTabWidget;
class QTimer;
class ScreensTab;
class SettingsTab;
class TexturesTab;
class UiServices;

// The one window: the tabs, the progress bar and the Close/Cancel button. It
// wires the tabs together and holds what they share (the game folder, the busy
// state, the save-button rules), which the tabs reach through TabHost; the
// work itself lives in the core operations the tabs call.
class Form1 : public QWidget, public BusyHost, public TabHost {
    Q_OBJECT
public:
    // `arguments` are the command-line arguments after the program name.
    Form1(UiServices& ui, const QStringList& arguments, QWidget* parent = nullptr);
    ~Form1() override;

    // Start-up: reads the settings into the controls, or, with "-randomizer",
    // does the randomizer run. Runs once; a second call does nothing.
    void Form_Load();

    // Start-up has already done the randomizer run before the window was
    // made (so the game starts sooner); the randomizer mode then goes on with
    // the daily refresh alone.
    void SetRandomizerDone() { randomizerDone_ = true; }

    // Closes the window as the close box does; refused while busy.
    void Unload();
    bool IsUnloaded() const { return unloaded_; }

    // The command line as one text, each argument that holds a blank quoted.
    QString CommandLine() const;

    // The five online slots' downloads, shared by the Online tab and the
    // randomizer's daily refresh.
    OnlineDownloads& Downloads() { return *downloads_; }
    SettingsTab& Settings() { return *settingsTab_; }

    // TabHost
    UiServices& Ui() override { return ui_; }
    SharedImages& Images() override { return images_; }
    // The texture catalogue's lists and the textures of the category last
    // loaded, shared by the Textures and Online tabs.
    CatalogueLoader& Catalogue() override { return *catalogue_; }
    QString GameFolder() const override;
    BusyHost& Busy() override { return *this; }
    TextureContext TextureWriteContext() const override;
    QString ScreenWidthText() const override;
    QString ScreenHeightText() const override;
    // The one enabling procedure for the save buttons of the Screens,
    // Randomizer and Music tabs; run after anything that may change them.
    void UpdateButtons() override;

    // BusyHost
    void SetBusy(bool Busy, bool Cancellable, long Maximum, const QString& Text) override;
    void ShowProgress(long Value, const QString& Text) override;
    void SetProgressMaximum(long Maximum) override;
    bool CancelRequested() const override { return cancelRequested_; }
    bool IsBusy() const override { return busy_; }
    bool RandomizerMode() const override { return randomizerMode_; }

    // Seconds since midnight of the latest download data; the randomizer's
    // time-out counts from it.
    void SetLastDataTime(double seconds) { lastDataTime_ = seconds; }
    double LastDataTime() const { return lastDataTime_; }

    // Tests replace the clock to step time by hand.
    void SetClock(std::function<double()> clock) { clock_ = std::move(clock); }

    void Quit_Click();
    void rndTimeout_Timer();

Q_SIGNALS:
    void Unloaded();

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    void buildWindow();
    void loadInteractiveSettings();
    void saveSettings();
    void startRandomizerMode();
    bool startDailyDownloads();
    void endAllDownloads();
    void noteDownloadData();
    void downloadsFinished();

    UiServices& ui_;
    QStringList arguments_;
    std::function<double()> clock_;

    QTabWidget* SSTab1_ = nullptr;
    QProgressBar* XPProgressBar1_ = nullptr;
    QPushButton* Quit_ = nullptr;
    QTimer* rndTimeout_ = nullptr;
    SettingsTab* settingsTab_ = nullptr;
    ScreensTab* screensTab_ = nullptr;
    RandomizerTab* randomizerTab_ = nullptr;
    MusicTab* musicTab_ = nullptr;
    TexturesTab* texturesTab_ = nullptr;
    OnlineTab* onlineTab_ = nullptr;
    CreditsTab* creditsTab_ = nullptr;
    OnlineDownloads* downloads_ = nullptr;

    bool loaded_ = false;
    bool unloaded_ = false;
    bool busy_ = false;
    bool randomizerMode_ = false;
    bool randomizerDone_ = false;
    bool cancelRequested_ = false;
    double lastBusyChange_ = 0.0;
    double lastDataTime_ = 0.0;

    SharedImages images_;
    std::unique_ptr<CatalogueLoader> catalogue_;
};
