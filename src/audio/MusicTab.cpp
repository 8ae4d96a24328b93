#include "MusicTab.h"

#include "MusicInstall.h"
#include "MusicTables.h"
#include "MusicWriter.h"
#include "SoundConversion.h"
#include "app/BusyHost.h"
#include "app/ControlTag.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "app/modRegistry.h"
#include "clsWinampPlugin.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const QString kSoundFilter =
    QStringLiteral("Sound files (mp1,mp2,mp3,mp4,m4a,aac,ogg,wav,wma)|"
                   "*.mp1;*.mp2;*.mp3;*.mp4;*.m4a;*.aac;*.ogg;*.wav;*.wma");

const QString kNoDecoderMessage = QStringLiteral("No suitable decoder for this file.\r\n\r\n"
                                                 "This error is normally caused by attempting\r\n"
                                                 "to load copy-protected WMA files.\r\n\r\n"
                                                 "Make sure the 'Protect music' box is disabled\r\n"
                                                 "in Windows Media Player's Rip Music tab\r\n"
                                                 "before ripping music from a CD.");

constexpr int kBoomBoxColumns = 5;

// A track box: a click ticks or unticks it, and ticks a grayed (done) one
// again; only the program grays a box.
class TrackCheckBox : public QCheckBox {
public:
    TrackCheckBox(const QString& caption, const QString& name, QWidget* parent)
        : QCheckBox(caption, parent) {
        setObjectName(name);
        setTristate(true);
    }

protected:
    void nextCheckState() override {
        setCheckState(checkState() == Qt::Checked ? Qt::Unchecked : Qt::Checked);
    }
};

} // namespace

MusicTab::MusicTab(UiServices& ui, BusyHost& busy, std::function<QString()> gameFolder,
                   QWidget* parent)
    : QWidget(parent), ui_(ui), busy_(busy), gameFolder_(std::move(gameFolder)) {
    setObjectName(QStringLiteral("MusicTab"));
    buildTab();
}

MusicTab::~MusicTab() = default;

void MusicTab::buildTab() {
    auto* source = new QGroupBox(QStringLiteral("Source sound file"), this);
    sndFile_ = new QLineEdit(source);
    sndFile_->setObjectName(QStringLiteral("sndFile"));
    // What is shown is always a file chosen with "Browse..." or its folder.
    sndFile_->setReadOnly(true);
    sndBrowse_ = new QPushButton(QStringLiteral("Browse..."), source);
    sndBrowse_->setObjectName(QStringLiteral("sndBrowse"));
    sndFolder_ = new QCheckBox(
        QStringLiteral("Pick random sound files from this folder for each track below"), source);
    sndFolder_->setObjectName(QStringLiteral("sndFolder"));
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(new QLabel(QStringLiteral("Input file:"), source));
    fileRow->addWidget(sndFile_, 1);
    fileRow->addWidget(sndBrowse_);
    auto* sourceLayout = new QVBoxLayout(source);
    sourceLayout->addLayout(fileRow);
    sourceLayout->addWidget(sndFolder_);

    auto* boomBox = new QGroupBox(QStringLiteral("BoomBox"), this);
    auto* boomBoxLayout = new QGridLayout(boomBox);
    for (int i = 0; i < kBoomBoxCount; ++i) {
        const BoomBoxTrack& track = kBoomBoxTracks[size_t(i)];
        auto* box = new TrackCheckBox(QString::fromLatin1(track.caption), BoomBoxName(i), boomBox);
        SetTag(box, QString::number(track.track));
        boomBoxLayout->addWidget(box, i / kBoomBoxColumns, i % kBoomBoxColumns);
        sndBoomBox_ << box;
    }

    auto* login = new QGroupBox(QStringLiteral("Login"), this);
    sndHeroLogin_ =
        new TrackCheckBox(QStringLiteral("Heroes login"), QStringLiteral("sndHeroLogin"), login);
    sndVillainLogin_ = new TrackCheckBox(QStringLiteral("Villains login"),
                                         QStringLiteral("sndVillainLogin"), login);
    auto* loginLayout = new QVBoxLayout(login);
    loginLayout->addWidget(sndHeroLogin_);
    loginLayout->addWidget(sndVillainLogin_);

    auto* pocketD = new QGroupBox(QStringLiteral("Pocket D"), this);
    sndDanceFloor_ =
        new TrackCheckBox(QStringLiteral("Dance floor"), QStringLiteral("sndDanceFloor"), pocketD);
    sndBlueSide_ =
        new TrackCheckBox(QStringLiteral("Blue side"), QStringLiteral("sndBlueSide"), pocketD);
    sndRedSide_ =
        new TrackCheckBox(QStringLiteral("Red side"), QStringLiteral("sndRedSide"), pocketD);
    auto* pocketDLayout = new QVBoxLayout(pocketD);
    pocketDLayout->addWidget(sndDanceFloor_);
    pocketDLayout->addWidget(sndBlueSide_);
    pocketDLayout->addWidget(sndRedSide_);

    sndSave_ = new QPushButton(QStringLiteral("Save selected tracks"), this);
    sndSave_->setObjectName(QStringLiteral("sndSave"));
    sndSave_->setEnabled(false);

    auto* lower = new QHBoxLayout;
    lower->addWidget(login);
    lower->addWidget(pocketD);
    lower->addStretch(1);
    lower->addWidget(sndSave_, 0, Qt::AlignBottom);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(source);
    layout->addWidget(boomBox);
    layout->addLayout(lower);
    layout->addStretch(1);

    connect(sndBrowse_, &QPushButton::clicked, this, &MusicTab::sndBrowse_Click);
    // toggled, not clicked: the stored setting loaded at start-up must have
    // the same effect as the player's click.
    connect(sndFolder_, &QCheckBox::toggled, this, &MusicTab::sndFolder_Click);
    connect(sndSave_, &QPushButton::clicked, this, &MusicTab::sndSave_Click);
    for (QCheckBox* box : trackBoxes())
        connect(box, &QCheckBox::clicked, this, &MusicTab::ButtonsMayChange);
}

QList<QCheckBox*> MusicTab::trackBoxes() const {
    QList<QCheckBox*> boxes = {sndHeroLogin_, sndVillainLogin_, sndDanceFloor_, sndBlueSide_,
                               sndRedSide_};
    return boxes + sndBoomBox_;
}

void MusicTab::UpdateSaveButton() {
    bool enabled = false;
    if (!sndFile_->text().isEmpty())
        for (const QCheckBox* box : trackBoxes())
            enabled = enabled || box->checkState() == Qt::Checked;
    sndSave_->setEnabled(enabled);
}

bool MusicTab::initialiseMusic() {
    if (!decoder_)
        decoder_ = std::make_unique<clsWinampPlugin>();
    if (decoder_->Init(ProgramFolder(), quintptr(window()->effectiveWinId())) == 0) {
        ui_.Message(QStringLiteral("No sound input plugins found."), MsgIcon::Exclamation);
        return false;
    }
    if (!encoder_)
        encoder_ = std::make_unique<clsEncoderOGG>(libraryNames_);
    if (!encoder_->InitEncoder()) {
        ui_.Message(QStringLiteral("Unable to initialize OGG encoder."), MsgIcon::Exclamation);
        return false;
    }
    musicInitialised_ = true;
    return true;
}

void MusicTab::sndBrowse_Click() {
    if (!musicInitialised_ && !initialiseMusic())
        return;
    const QString fileName =
        ui_.OpenFile({modRegistry::QueryValue(kSettingsKey, QStringLiteral("LastSoundDir")),
                      QString(), kSoundFilter});
    if (fileName.isEmpty())
        return;
    if (decoder_->OpenFile(fileName)) {
        // Opening only tests that the file can be decoded.
        decoder_->CloseFile();
        SetTag(sndFile_, fileName);
        sndFile_->setText(fileName);
    } else {
        ui_.Message(kNoDecoderMessage, MsgIcon::Exclamation);
    }
    modRegistry::SetValue(kSettingsKey, QStringLiteral("LastSoundDir"), ReturnPath(fileName));
    Q_EMIT ButtonsMayChange();
}

void MusicTab::sndFolder_Click() {
    sndFile_->setText(sndFolder_->isChecked() ? ReturnPath(Tag(sndFile_)) : Tag(sndFile_));
}

void MusicTab::sndSave_Click() {
    sndSave_->setEnabled(false);
    MusicBoxStates states;
    for (const QCheckBox* box : trackBoxes())
        states.insert(box->objectName(), box->checkState());
    InstallMusic(sndFile_->text(), gameFolder_(), states, decoder_.get(), encoder_.get(), busy_,
                 ui_);
    for (QCheckBox* box : trackBoxes())
        box->setCheckState(states.value(box->objectName()));
    Q_EMIT ButtonsMayChange();
}
