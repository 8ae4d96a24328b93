#include "RandomizerTab.h"

#include "LibraryFolder.h"
#include "app/ControlTag.h"
#include "app/Form1.h"
#include "app/PathUtils.h"
#include "app/UiServices.h"
#include "image/FrameOverlay.h"
#include "image/ImageOpenDialog.h"
#include "texture/FormTextureWrite.h"
#include "texture/ScreenTargets.h"
#include "texture/ScreensTab.h"

#include <QCheckBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

// A library half: its button's caption, the screen whose frame it takes, and
// its folder below the game folder.
struct RandomizerTab::Half {
    const char* caption;
    const ScreenTarget& screen;
    const char* library;
};

namespace {

const RandomizerTab::Half kLoginHalf{"Add to login screen", kLoginScreen, "/Kelvaris/RandomHL/"};
const RandomizerTab::Half kCharacterHalf{"Add to character selection screen", kCharacterScreen,
                                         "/Kelvaris/RandomHC/"};

} // namespace

RandomizerTab::RandomizerTab(Form1& form, ScreensTab& screens, QWidget* parent)
    : QWidget(parent), form_(form), screens_(screens) {
    setObjectName(QStringLiteral("RandomizerTab"));

    auto* rndFrame = new QGroupBox(QStringLiteral("Source image"), this);
    rndFrame->setObjectName(QStringLiteral("rndFrame"));
    rndFile_ = new QLineEdit(rndFrame);
    rndFile_->setObjectName(QStringLiteral("rndFile"));
    rndFile_->setReadOnly(true);
    rndBrowse_ = new QPushButton(QStringLiteral("Browse..."), rndFrame);
    rndBrowse_->setObjectName(QStringLiteral("rndBrowse"));
    rndFolder_ = new QCheckBox(
        QStringLiteral("Add all the images in this folder to the Randomizer"), rndFrame);
    rndFolder_->setObjectName(QStringLiteral("rndFolder"));
    auto* source = new QGridLayout(rndFrame);
    source->addWidget(new QLabel(QStringLiteral("Input file:"), rndFrame), 0, 0);
    source->addWidget(rndFile_, 0, 1);
    source->addWidget(rndBrowse_, 0, 2);
    source->addWidget(rndFolder_, 1, 0, 1, 3);

    auto* destination = new QGroupBox(QStringLiteral("Destination texture"), this);
    rndSaveHL_ = new QPushButton(QStringLiteral("Add to login screen"), destination);
    rndSaveHL_->setObjectName(QStringLiteral("rndSaveHL"));
    rndSaveHC_ = new QPushButton(QStringLiteral("Add to character selection screen"), destination);
    rndSaveHC_->setObjectName(QStringLiteral("rndSaveHC"));
    rndSaveHL_->setEnabled(false);
    rndSaveHC_->setEnabled(false);
    auto* buttons = new QVBoxLayout(destination);
    buttons->addWidget(rndSaveHL_);
    buttons->addWidget(rndSaveHC_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(rndFrame);
    layout->addWidget(destination);
    layout->addStretch(1);

    connect(rndBrowse_, &QPushButton::clicked, this, &RandomizerTab::rndBrowse_Click);
    // The stored setting is applied at start-up by setting the box, which must
    // react as a click would.
    connect(rndFolder_, &QCheckBox::toggled, this, &RandomizerTab::rndFolder_Click);
    connect(rndSaveHL_, &QPushButton::clicked, this, &RandomizerTab::rndSaveHL_Click);
    connect(rndSaveHC_, &QPushButton::clicked, this, &RandomizerTab::rndSaveHC_Click);
}

void RandomizerTab::UpdateButtons(const QString& gameFolder) {
    const bool enabled = !gameFolder.isEmpty() && !rndFile_->text().isEmpty();
    rndSaveHL_->setEnabled(enabled);
    rndSaveHC_->setEnabled(enabled);
}

void RandomizerTab::rndBrowse_Click() {
    const QString chosen = BrowseImage(form_.Ui());
    if (chosen.isEmpty())
        return;
    SetTag(rndFile_, chosen);
    rndFolder_Click();
    // The picture is held in the screen image the Screens tab shows too.
    if (screens_.LoadScreenImage(chosen))
        screens_.SetImageFile(chosen);
    form_.UpdateButtons();
}

void RandomizerTab::rndFolder_Click() {
    rndFile_->setText(rndFolder_->isChecked() ? ReturnPath(Tag(rndFile_)) : Tag(rndFile_));
    form_.UpdateButtons();
}

void RandomizerTab::rndSaveHL_Click() {
    save(kLoginHalf);
}

void RandomizerTab::rndSaveHC_Click() {
    save(kCharacterHalf);
}

void RandomizerTab::AddRandomImageHL(const QString& FileName) {
    addRandomImage(kLoginHalf, FileName);
}

void RandomizerTab::AddRandomImageHC(const QString& FileName) {
    addRandomImage(kCharacterHalf, FileName);
}

QPushButton* RandomizerTab::buttonFor(const Half& half) const {
    return &half == &kLoginHalf ? rndSaveHL_ : rndSaveHC_;
}

void RandomizerTab::save(const Half& half) {
    if (!rndFolder_->isChecked()) {
        // The name as the folder has it, so the library entry matches the file.
        const QFileInfo file(ResolveExistingCase(Tag(rndFile_)));
        if (!file.isFile())
            return;
        addRandomImage(half, file.fileName());
        return;
    }

    const QString folder = rndFile_->text();
    const FolderPictures pictures = ListFolderPictures(folder);
    if (pictures.reachedLimit)
        form_.Ui().Message(QStringLiteral("Kelvaris will only process the first 1000 images."),
                           MsgIcon::None);
    QPushButton* button = buttonFor(half);
    const qsizetype count = pictures.names.size();
    for (qsizetype i = 0; i < count; ++i) {
        button->setText(QStringLiteral("Image %1 of %2").arg(i + 1).arg(count));
        const QString& name = pictures.names[i];
        if (screens_.LoadScreenImage(folder + u'/' + name, i + 1 == count))
            addRandomImage(half, name);
    }
    button->setText(QString::fromLatin1(half.caption));
    if (count == 0)
        return; // nothing was loaded: the Screens tab keeps its picture
    screens_.UpdatePreviews();
    const QString last = folder + u'/' + pictures.names.last();
    screens_.SetImageFile(last);
    SetTag(rndFile_, last);
}

void RandomizerTab::addRandomImage(const Half& half, const QString& FileName) {
    QPushButton* button = buttonFor(half);
    button->setEnabled(false);
    SharedImages& images = form_.Images();
    const auto picture = screens_.FramesOn()
                             ? ApplyFrame(screens_.FrameFile(half.screen), images.screenImage)
                             : images.screenImage;
    const QString library = form_.GameFolder() + QString::fromLatin1(half.library);
    if (!WriteFormTexture(form_, library, QStringLiteral("coh"), FileName, *picture,
                          kScreenTextureSize, kScreenTextureSize, false, 0, 0, QString(), false,
                          nullptr, true))
        form_.Ui().Message(WriteErrorText(), MsgIcon::Exclamation);
    button->setEnabled(true);
}
