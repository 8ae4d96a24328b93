#include "LibraryView.h"

#include "app/PathUtils.h"
#include "app/TabHost.h"
#include "app/UiServices.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

// Thumbnails are 4:3, as the screens are.
const QSize kThumbnail(96, 72);
constexpr int kThumbnailsPerStep = 4;

QString suffixed(const char* name, LibraryHalf half) {
    return QString::fromLatin1(name) +
           QString::fromLatin1(half == LibraryHalf::Login ? "HL" : "HC");
}

} // namespace

LibraryView::LibraryView(TabHost& host, LibraryHalf half, QWidget* parent)
    : QGroupBox(parent), host_(host), half_(half) {
    setTitle(half == LibraryHalf::Login ? QStringLiteral("Login screens")
                                        : QStringLiteral("Character selection screens"));
    list_ = new QListWidget(this);
    list_->setObjectName(suffixed("rndLibrary", half));
    list_->setViewMode(QListView::IconMode);
    list_->setIconSize(kThumbnail);
    list_->setResizeMode(QListView::Adjust);
    list_->setMovement(QListView::Static);
    list_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    list_->setMinimumHeight(kThumbnail.height() * 2);
    count_ = new QLabel(this);
    count_->setObjectName(suffixed("rndCount", half));
    remove_ = new QPushButton(QStringLiteral("Remove..."), this);
    remove_->setObjectName(suffixed("rndRemove", half));
    open_ = new QPushButton(QStringLiteral("Open folder"), this);
    open_->setObjectName(suffixed("rndOpen", half));
    auto* row = new QHBoxLayout;
    row->addWidget(count_, 1);
    row->addWidget(remove_);
    row->addWidget(open_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(list_, 1);
    layout->addLayout(row);

    thumbnails_.setInterval(0);
    connect(&thumbnails_, &QTimer::timeout, this, &LibraryView::makeSomeThumbnails);
    connect(remove_, &QPushButton::clicked, this, &LibraryView::Remove_Click);
    connect(open_, &QPushButton::clicked, this, &LibraryView::Open_Click);
}

void LibraryView::Refresh() {
    shownGame_ = host_.GameFolder();
    list_->clear();
    const QStringList names = shownGame_.isEmpty() ? QStringList() : ListLibrary(shownGame_, half_);
    const QString lastPick = LastLibraryPick(half_);
    for (const QString& name : names) {
        auto* item = new QListWidgetItem(name, list_);
        item->setSizeHint(kThumbnail + QSize(24, 36));
        // The picture the last game start installed.
        if (name == lastPick) {
            QFont bold = item->font();
            bold.setBold(true);
            item->setFont(bold);
            item->setToolTip(QStringLiteral("Picked at the last game start"));
        }
    }
    count_->setText(QStringLiteral("%1 picture(s)").arg(names.size()));
    remove_->setEnabled(!names.isEmpty());
    open_->setEnabled(!shownGame_.isEmpty());
    nextThumbnail_ = 0;
    thumbnails_.start();
}

void LibraryView::makeSomeThumbnails() {
    for (int made = 0; made < kThumbnailsPerStep && nextThumbnail_ < list_->count(); ++made) {
        QListWidgetItem* item = list_->item(nextThumbnail_++);
        const QImage thumbnail = LibraryThumbnail(shownGame_, half_, item->text(), kThumbnail);
        if (!thumbnail.isNull())
            item->setIcon(QPixmap::fromImage(thumbnail));
    }
    if (nextThumbnail_ >= list_->count())
        thumbnails_.stop();
}

void LibraryView::FinishThumbnails() {
    while (thumbnails_.isActive())
        makeSomeThumbnails();
}

void LibraryView::Remove_Click() {
    QStringList names;
    for (const QListWidgetItem* item : list_->selectedItems())
        names << item->text();
    if (names.isEmpty())
        return;
    const QString question =
        names.size() == 1
            ? QStringLiteral("Remove \"%1\" from the library?").arg(names.first())
            : QStringLiteral("Remove these %1 pictures from the library?").arg(names.size());
    if (host_.Ui().Message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    RemoveLibraryEntries(shownGame_, half_, names, host_.Ui());
    Refresh();
}

void LibraryView::Open_Click() {
    if (shownGame_.isEmpty())
        return;
    const QString folder = ResolveExistingCase(LibraryFolderOf(shownGame_, half_));
    MakePath(folder);
    host_.Ui().StartProgram({QStringLiteral("xdg-open"), {folder}, QString()});
}
