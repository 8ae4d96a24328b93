#include "RandomizerTab.h"

#include "LibraryFolder.h"
#include "LibraryView.h"
#include "RandomizerDesktopEntry.h"
#include "app/ControlTag.h"
#include "app/PathUtils.h"
#include "app/TabHost.h"
#include "app/UiServices.h"
#include "image/ImageOpenDialog.h"
#include "image/SharedImages.h"
#include "texture/ScreenTargets.h"
#include "texture/ScreensTab.h"
#include "texture/TextureWriter.h"

#include <QCheckBox>
#include <QCoreApplication>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QVBoxLayout>

RandomizerTab::RandomizerTab(TabHost& host, ScreensTab& screens, QWidget* parent)
    : QWidget(parent), host_(host), screens_(screens) {
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

    // A menu entry that starts the game through the randomizer run.
    auto* launcher = new QGroupBox(QStringLiteral("Game launcher"), this);
    rndClientArgs_ = new QLineEdit(launcher);
    rndClientArgs_->setObjectName(QStringLiteral("rndClientArgs"));
    rndClientArgs_->setPlaceholderText(QStringLiteral("the chat client's own arguments, if any"));
    rndLauncher_ = new QPushButton(QStringLiteral("Create game launcher"), launcher);
    rndLauncher_->setObjectName(QStringLiteral("rndLauncher"));
    auto* launcherRow = new QHBoxLayout(launcher);
    launcherRow->addWidget(new QLabel(QStringLiteral("Client arguments:"), launcher));
    launcherRow->addWidget(rndClientArgs_, 1);
    launcherRow->addWidget(rndLauncher_);

    // What a game start may pick from, as pictures.
    auto* library = new QGroupBox(QStringLiteral("Library"), this);
    libraryHL_ = new LibraryView(host_, LibraryHalf::Login, library);
    libraryHC_ = new LibraryView(host_, LibraryHalf::Character, library);
    auto* halves = new QHBoxLayout(library);
    halves->addWidget(libraryHL_);
    halves->addWidget(libraryHC_);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(rndFrame);
    layout->addWidget(destination);
    layout->addWidget(library, 1);
    layout->addWidget(launcher);
    layout->addStretch(1);

    connect(rndBrowse_, &QPushButton::clicked, this, &RandomizerTab::rndBrowse_Click);
    // The stored setting is applied at start-up by setting the box, which must
    // react as a click would.
    connect(rndFolder_, &QCheckBox::toggled, this, &RandomizerTab::rndFolder_Click);
    connect(rndSaveHL_, &QPushButton::clicked, this, &RandomizerTab::rndSaveHL_Click);
    connect(rndSaveHC_, &QPushButton::clicked, this, &RandomizerTab::rndSaveHC_Click);
    connect(rndLauncher_, &QPushButton::clicked, this, &RandomizerTab::rndLauncher_Click);
}

void RandomizerTab::rndLauncher_Click() {
    // The arguments are split as a shell would, quotes included, and each
    // reaches the client as typed.
    const QStringList arguments = QProcess::splitCommand(rndClientArgs_->text());
    const QString written =
        WriteRandomizerDesktopEntry(arguments, QCoreApplication::applicationFilePath());
    if (written.isEmpty())
        host_.Ui().Message(QStringLiteral("The game launcher could not be written."),
                           MsgIcon::Exclamation);
    else
        host_.Ui().Message(QStringLiteral("The game launcher \"City of Heroes (Kelvaris "
                                          "randomizer)\" was written to\r\n%1\r\nIt starts the "
                                          "game with new random backgrounds each time.")
                               .arg(written),
                           MsgIcon::None);
}

void RandomizerTab::UpdateButtons(const QString& gameFolder) {
    const bool enabled = !gameFolder.isEmpty() && !rndFile_->text().isEmpty();
    rndSaveHL_->setEnabled(enabled);
    rndSaveHC_->setEnabled(enabled);
}

void RandomizerTab::rndBrowse_Click() {
    const QString chosen = BrowseImage(host_.Ui());
    if (chosen.isEmpty())
        return;
    SetTag(rndFile_, chosen);
    rndFolder_Click();
    // The picture is held in the screen image the Screens tab shows too.
    if (screens_.LoadScreenImage(chosen))
        screens_.SetImageFile(chosen);
    host_.UpdateButtons();
}

void RandomizerTab::rndFolder_Click() {
    rndFile_->setText(rndFolder_->isChecked() ? ReturnPath(Tag(rndFile_)) : Tag(rndFile_));
    host_.UpdateButtons();
}

void RandomizerTab::rndSaveHL_Click() {
    save(LibraryHalf::Login);
}

void RandomizerTab::rndSaveHC_Click() {
    save(LibraryHalf::Character);
}

void RandomizerTab::AddRandomImageHL(const QString& FileName) {
    addRandomImage(LibraryHalf::Login, FileName);
}

void RandomizerTab::AddRandomImageHC(const QString& FileName) {
    addRandomImage(LibraryHalf::Character, FileName);
}

QPushButton* RandomizerTab::buttonFor(LibraryHalf half) const {
    return half == LibraryHalf::Login ? rndSaveHL_ : rndSaveHC_;
}

LibraryAdd RandomizerTab::libraryAdd(LibraryHalf half) const {
    LibraryAdd add;
    add.half = half;
    if (screens_.FramesOn())
        add.frameFile = screens_.FrameFile(HalfInfo(half).screen);
    // The picture is held in the screen image the Screens tab shows too.
    add.image = host_.Images().screenImage;
    return add;
}

void RandomizerTab::save(LibraryHalf half) {
    if (!rndFolder_->isChecked()) {
        // The name as the folder has it, so the library entry matches the file.
        const QFileInfo file(ResolveExistingCase(Tag(rndFile_)));
        if (!file.isFile())
            return;
        addRandomImage(half, file.fileName());
        return;
    }

    const QString folder = rndFile_->text();
    QPushButton* button = buttonFor(half);
    LibraryAdd add = libraryAdd(half);
    QString last;
    add.lastPreviews = screens_.ScreenPreviewMaker();
    add.step = [button, &last](qsizetype i, qsizetype n, const QString& FileName) {
        last = FileName;
        button->setText(QStringLiteral("Image %1 of %2").arg(i).arg(n));
    };
    AddFolderToLibrary(add, folder, host_.TextureWriteContext(), host_.Busy(), host_.Ui());
    button->setText(QString::fromLatin1(HalfInfo(half).caption));
    RefreshLibrary();
    if (last.isEmpty())
        return; // nothing was loaded: the Screens tab keeps its picture
    screens_.UpdatePreviews();
    screens_.SetImageFile(last);
    SetTag(rndFile_, last);
}

void RandomizerTab::addRandomImage(LibraryHalf half, const QString& FileName) {
    QPushButton* button = buttonFor(half);
    button->setEnabled(false);
    WriteLibraryEntry(libraryAdd(half), FileName, host_.TextureWriteContext(), host_.Busy(),
                      host_.Ui());
    button->setEnabled(true);
    RefreshLibrary();
}

void RandomizerTab::RefreshLibrary() {
    libraryHL_->Refresh();
    libraryHC_->Refresh();
}

void RandomizerTab::showEvent(QShowEvent* event) {
    RefreshLibrary();
    QWidget::showEvent(event);
}
