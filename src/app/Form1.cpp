#include "Form1.h"

#include "Clock.h"
#include "ControlTag.h"
#include "CreditsTab.h"
#include "FormSettings.h"
#include "InstalledTab.h"
#include "PathUtils.h"
#include "SettingsTab.h"
#include "StartUp.h"
#include "VersionString.h"
#include "audio/MusicTab.h"
#include "modRegistry.h"
#include "online/OnlineDownloads.h"
#include "online/OnlineTab.h"
#include "online/OnlineTextureApplier.h"
#include "randomizer/RandomizerTab.h"
#include "randomizer/RunRandomizer.h"
#include "texture/CatalogueLoader.h"
#include "texture/ScreensTab.h"
#include "texture/TextureWriter.h"
#include "texture/TexturesTab.h"

#include <QAbstractButton>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QFile>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// The Close button ignores a click that lands this soon after a busy period
// ended: it was meant for "Cancel".
constexpr double kQuitGuardSeconds = 0.1;
// The randomizer run gives up on downloads that send nothing for this long.
constexpr double kDownloadSilenceSeconds = 30.0;

// The progress bar's text as written: a file name holding "%" ("50%v off.png")
// must not be taken for the bar's own %v, %p or %m.
QString progressFormat(const QString& text) {
    return QString(text).replace(u'%', QStringLiteral("%%"));
}

} // namespace

Form1::Form1(UiServices& ui, const QStringList& arguments, QWidget* parent)
    : QWidget(parent), ui_(ui), arguments_(arguments), clock_(&SecondsSinceMidnight),
      catalogue_(std::make_unique<CatalogueLoader>(ui)) {
    setObjectName(QStringLiteral("Form1"));
    // Finished downloads become textures the way every tab writes pictures.
    downloads_ = new OnlineDownloads(ui_, *this, this);
    buildWindow();
    downloads_->SetTextureApplier(MakeOnlineTextureApplier(
        images_.cDib, [this] { return TextureWriteContext(); }, *this, ui_));
}

Form1::~Form1() = default;

void Form1::buildWindow() {
    setWindowTitle(QStringLiteral("Kelvaris"));
    resize(660, 540);

    SSTab1_ = new QTabWidget(this);
    SSTab1_->setObjectName(QStringLiteral("SSTab1"));
    screensTab_ = new ScreensTab(*this, images_, SSTab1_);
    SSTab1_->addTab(screensTab_, QStringLiteral("Screens"));
    randomizerTab_ = new RandomizerTab(*this, *screensTab_, SSTab1_);
    SSTab1_->addTab(randomizerTab_, QStringLiteral("Randomizer"));
    musicTab_ = new MusicTab(
        ui_, *this, [this] { return GameFolder(); }, SSTab1_);
    SSTab1_->addTab(musicTab_, QStringLiteral("Music"));
    texturesTab_ = new TexturesTab(*this, SSTab1_);
    SSTab1_->addTab(texturesTab_, QStringLiteral("Textures"));
    onlineTab_ = new OnlineTab(ui_, *downloads_, *catalogue_, SSTab1_);
    SSTab1_->addTab(onlineTab_, QStringLiteral("Online"));
    SSTab1_->addTab(new InstalledTab(*this, SSTab1_), QStringLiteral("Installed"));
    settingsTab_ = new SettingsTab(ui_, SSTab1_);
    SSTab1_->addTab(settingsTab_, QStringLiteral("Settings"));
    creditsTab_ = new CreditsTab(ui_, SSTab1_);
    SSTab1_->addTab(creditsTab_, QStringLiteral("Credits"));

    XPProgressBar1_ = new QProgressBar(this);
    XPProgressBar1_->setObjectName(QStringLiteral("XPProgressBar1"));
    XPProgressBar1_->setTextVisible(true);
    XPProgressBar1_->setAlignment(Qt::AlignCenter);
    XPProgressBar1_->setRange(0, 100);
    XPProgressBar1_->hide();

    Quit_ = new QPushButton(QStringLiteral("Close"), this);
    Quit_->setObjectName(QStringLiteral("Quit"));

    auto* bottom = new QHBoxLayout;
    bottom->addWidget(XPProgressBar1_, 1);
    bottom->addStretch(0);
    bottom->addWidget(Quit_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(SSTab1_, 1);
    layout->addLayout(bottom);

    rndTimeout_ = new QTimer(this);
    rndTimeout_->setObjectName(QStringLiteral("rndTimeout"));
    rndTimeout_->setInterval(1000);

    connect(Quit_, &QPushButton::clicked, this, &Form1::Quit_Click);
    connect(rndTimeout_, &QTimer::timeout, this, &Form1::rndTimeout_Timer);
    connect(settingsTab_, &SettingsTab::GameFolderChanged, this, &Form1::UpdateButtons);
    connect(downloads_, &OnlineDownloads::DataArrived, this, &Form1::noteDownloadData);
    connect(downloads_, &OnlineDownloads::Finished, this, &Form1::downloadsFinished);
    connect(musicTab_, &MusicTab::ButtonsMayChange, this, &Form1::UpdateButtons);
    connect(SSTab1_, &QTabWidget::currentChanged, texturesTab_,
            [this] { texturesTab_->SSTab1_Click(SSTab1_->currentWidget() == texturesTab_); });
    // The Textures tab reloads the lists the Online tab's chooser shows.
    connect(texturesTab_, &TexturesTab::CatalogueReloaded, onlineTab_, &OnlineTab::showSlotList);
}

QString Form1::CommandLine() const {
    return JoinCommandLine(arguments_);
}

QString Form1::GameFolder() const {
    return settingsTab_->GameFolder();
}

TextureContext Form1::TextureWriteContext() const {
    return MakeTextureContext(GameFolder(), settingsTab_->CompressTextures());
}

QString Form1::ScreenWidthText() const {
    return settingsTab_->ScreenWidthText();
}

QString Form1::ScreenHeightText() const {
    return settingsTab_->ScreenHeightText();
}

void Form1::Form_Load() {
    if (loaded_)
        return;
    loaded_ = true;

    const QString folder = StartGameFolder();
    settingsTab_->SetGameFolder(folder);
    for (int n = 0; n < kOnlineSlots; ++n) {
        LoadControlSetting(*this, OnlineNameSetting(n));
        LoadControlSetting(*this, OnlineLinkSetting(n));
    }

    if (IsRandomizerCommandLine(CommandLine())) {
        startRandomizerMode();
        return;
    }
    loadInteractiveSettings();
    UpdateButtons();
}

void Form1::loadInteractiveSettings() {
    setWindowTitle(QStringLiteral("Kelvaris ") + VersionString());
    creditsTab_->ShowVersionAndAcknowledgements();
    // Looked for once the window is up, so it never holds up the start.
    QTimer::singleShot(0, settingsTab_, &SettingsTab::FindInstallations);

    for (const ControlSetting& setting : SettingsLoadedAtStart()) {
        LoadControlSetting(*this, setting);
        QWidget* control = findChild<QWidget*>(setting.controlName);
        if (!control)
            continue;
        if (setting.valueName == u"CohRegKey" && Tag(control).isEmpty()) {
            SetTag(control, QStringLiteral("Coh"));
        } else if (setting.valueName == u"Frames") {
            auto* frames = qobject_cast<QAbstractButton*>(control);
            auto* preview = findChild<QWidget*>(QStringLiteral("scrFramesPreview"));
            if (frames && preview && !frames->isChecked())
                preview->setEnabled(false);
        } else if (setting.valueName == u"CohAuto") {
            auto* automatic = qobject_cast<QAbstractButton*>(control);
            if (automatic && automatic->isChecked())
                settingsTab_->setAuto_Click();
        }
    }
}

void Form1::saveSettings() {
    for (const ControlSetting& setting : SettingsSavedAtClose())
        SaveControlSetting(*this, setting);
}

void Form1::startRandomizerMode() {
    randomizerMode_ = true;
    lastDataTime_ = clock_();

    if (!randomizerDone_)
        RunRandomizer(GameFolder(), CommandLine(), ui_);

    bool downloading = false;
    if (modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastOnlineUpdate")) !=
        ShortDateText(QDate::currentDate()))
        downloading = startDailyDownloads();

    if (!downloading) {
        Unload();
        QCoreApplication::processEvents();
        return;
    }
    // The window stays hidden: the player is starting the game, not Kelvaris.
    rndTimeout_->start();
}

bool Form1::startDailyDownloads() {
    // Each slot's texture and address are the texts of its boxes on the
    // Online tab, which Form_Load filled from webName n and webLink n; without
    // the tab they are read from those values directly.
    const auto slotText = [this](const ControlSetting& setting) {
        if (const auto* box = findChild<QLineEdit*>(setting.controlName))
            return box->text();
        return modRegistry::QueryValue(kSettingsKey, setting.valueName);
    };
    for (int n = 0; n < kOnlineSlots; ++n) {
        downloads_->StartDownload(n, slotText(OnlineNameSetting(n)),
                                  slotText(OnlineLinkSetting(n)));
        QCoreApplication::processEvents();
    }
    return downloads_->AnyActive();
}

void Form1::endAllDownloads() {
    for (int n = 0; n < kOnlineSlots; ++n)
        downloads_->EndDownload(n);
}

void Form1::noteDownloadData() {
    lastDataTime_ = clock_();
}

void Form1::downloadsFinished() {
    // The daily refresh is done (its date stored); the randomizer run ends.
    if (randomizerMode_)
        Unload();
}

void Form1::rndTimeout_Timer() {
    const double now = clock_();
    if (lastDataTime_ > now) // the clock passed midnight
        lastDataTime_ = 0;
    if (now - lastDataTime_ > kDownloadSilenceSeconds) {
        endAllDownloads();
        Unload();
    }
}

void Form1::UpdateButtons() {
    // Each tab that owns save buttons applies its own rule, in this order.
    screensTab_->UpdateButtons(GameFolder());
    randomizerTab_->UpdateButtons(GameFolder());
    musicTab_->UpdateSaveButton();
}

void Form1::SetBusy(bool Busy, bool Cancellable, long Maximum, const QString& Text) {
    busy_ = Busy;
    if (randomizerMode_)
        return;
    if (Busy) {
        XPProgressBar1_->setValue(0);
        if (Maximum > 0)
            XPProgressBar1_->setMaximum(int(Maximum));
        XPProgressBar1_->setFormat(Text.isEmpty() ? QStringLiteral(" ") : progressFormat(Text));
        XPProgressBar1_->show();
        SSTab1_->setEnabled(false);
        Quit_->setText(QStringLiteral("Cancel"));
        cancelRequested_ = false;
        if (!Cancellable)
            Quit_->setEnabled(false);
    } else {
        XPProgressBar1_->hide();
        SSTab1_->setEnabled(true);
        Quit_->setText(QStringLiteral("Close"));
        Quit_->setEnabled(true);
        lastBusyChange_ = clock_();
    }
}

void Form1::ShowProgress(long Value, const QString& Text) {
    if (!randomizerMode_) {
        XPProgressBar1_->setValue(int(Value));
        if (!Text.isEmpty())
            XPProgressBar1_->setFormat(progressFormat(Text));
    }
    ProcessEventsNowAndThen();
}

void Form1::SetProgressMaximum(long Maximum) {
    XPProgressBar1_->setMaximum(int(Maximum));
}

void Form1::Quit_Click() {
    const double now = clock_();
    if (busy_) {
        cancelRequested_ = true;
        lastBusyChange_ = now;
        return;
    }
    double elapsed = now - lastBusyChange_;
    if (elapsed < 0) // the clock passed midnight
        elapsed += 24 * 60 * 60;
    if (elapsed > kQuitGuardSeconds)
        Unload();
}

void Form1::Unload() {
    close();
}

void Form1::closeEvent(QCloseEvent* event) {
    if (busy_ || unloaded_) {
        event->ignore();
        return;
    }
    if (!randomizerMode_) {
        QFile::remove(WorkFolder() + QStringLiteral("/converted.ogg"));
        saveSettings();
    }
    rndTimeout_->stop();
    unloaded_ = true;
    event->accept();
    Q_EMIT Unloaded();
}
