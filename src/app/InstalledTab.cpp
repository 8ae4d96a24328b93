#include "InstalledTab.h"

#include "GameInventory.h"
#include "GameManifest.h"
#include "TabHost.h"
#include "UiServices.h"
#include "audio/SoundLength.h"
#include "texture/TextureReader.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLocale>
#include <QPixmap>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace {

const QSize kIcon(48, 36);

QString kindCaption(const char* kind) {
    const QString k = QString::fromLatin1(kind);
    if (k == u"screen")
        return QStringLiteral("Screen");
    if (k == u"texture")
        return QStringLiteral("Texture");
    return QStringLiteral("Music");
}

} // namespace

InstalledTab::InstalledTab(TabHost& host, QWidget* parent) : QWidget(parent), host_(host) {
    setObjectName(QStringLiteral("InstalledTab"));
    insFiles_ = new QTreeWidget(this);
    insFiles_->setObjectName(QStringLiteral("insFiles"));
    insFiles_->setHeaderLabels({QStringLiteral("File"), QStringLiteral("Kind"),
                                QStringLiteral("Length, size"), QStringLiteral("Written"),
                                QStringLiteral("Replaced"), QStringLiteral("By")});
    insFiles_->setRootIsDecorated(false);
    insFiles_->setIconSize(kIcon);
    insFiles_->setSelectionMode(QAbstractItemView::ExtendedSelection);
    insFiles_->header()->setSectionResizeMode(0, QHeaderView::Stretch);
    insSummary_ = new QLabel(this);
    insSummary_->setObjectName(QStringLiteral("insSummary"));
    insRestore_ = new QPushButton(QStringLiteral("Restore selected..."), this);
    insRestore_->setObjectName(QStringLiteral("insRestore"));
    insRestoreAll_ = new QPushButton(QStringLiteral("Restore all..."), this);
    insRestoreAll_->setObjectName(QStringLiteral("insRestoreAll"));
    auto* row = new QHBoxLayout;
    row->addWidget(insSummary_, 1);
    row->addWidget(insRestore_);
    row->addWidget(insRestoreAll_);
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(insFiles_, 1);
    layout->addLayout(row);
    connect(insRestore_, &QPushButton::clicked, this, &InstalledTab::insRestore_Click);
    connect(insRestoreAll_, &QPushButton::clicked, this, &InstalledTab::insRestoreAll_Click);
}

void InstalledTab::showEvent(QShowEvent* event) {
    Refresh();
    QWidget::showEvent(event);
}

void InstalledTab::Refresh() {
    insFiles_->clear();
    const QString game = host_.GameFolder();
    int count = 0;
    int ours = 0;
    for (const InventoryFile& file : GameInventory(game)) {
        if (QLatin1String(file.kind) == u"library")
            continue; // the library is Kelvaris's own, on the Randomizer tab
        // Music shows how long it plays, pictures show themselves.
        const bool music = QLatin1String(file.kind) == u"music";
        QString size = QLocale().formattedDataSize(file.size);
        if (const QString length =
                music ? LengthText(SoundLengthMs(game + u'/' + file.path)) : QString();
            !length.isEmpty())
            size = length + QStringLiteral(", ") + size;
        auto* item = new QTreeWidgetItem(
            insFiles_, {file.path, kindCaption(file.kind), size,
                        QLocale().toString(file.written, QLocale::ShortFormat),
                        file.hasBackup ? QStringLiteral("kept") : QString(),
                        file.byKelvaris ? QStringLiteral("Kelvaris") : QStringLiteral("?")});
        item->setData(0, Qt::UserRole, file.byKelvaris);
        item->setToolTip(4, file.hasBackup ? QStringLiteral("Restoring puts back the file "
                                                            "Kelvaris replaced")
                                           : QStringLiteral("Restoring removes the file"));
        if (!music) {
            const TexturePicture picture = ReadTextureFile(game + u'/' + file.path);
            if (!picture.image.isNull())
                item->setIcon(0, QPixmap::fromImage(picture.image.scaled(
                                     kIcon, Qt::KeepAspectRatio, Qt::SmoothTransformation)));
        }
        ++count;
        ours += file.byKelvaris ? 1 : 0;
    }
    for (int column = 1; column < insFiles_->columnCount(); ++column)
        insFiles_->resizeColumnToContents(column);
    insSummary_->setText(
        count == 0 ? QStringLiteral("The game has only its own files.")
                   : QStringLiteral("%1 file(s), %2 placed by Kelvaris").arg(count).arg(ours));
    insRestore_->setEnabled(count > 0);
    insRestoreAll_->setEnabled(ours > 0);
}

void InstalledTab::insRestore_Click() {
    QStringList paths;
    for (const QTreeWidgetItem* item : insFiles_->selectedItems())
        paths << item->text(0);
    restore(paths);
}

void InstalledTab::insRestoreAll_Click() {
    QStringList paths;
    // Only what Kelvaris wrote: another program's or the player's own files
    // are restored only when chosen one by one.
    for (int i = 0; i < insFiles_->topLevelItemCount(); ++i)
        if (insFiles_->topLevelItem(i)->data(0, Qt::UserRole).toBool())
            paths << insFiles_->topLevelItem(i)->text(0);
    restore(paths);
}

void InstalledTab::restore(const QStringList& paths) {
    if (paths.isEmpty())
        return;
    const QString question = QStringLiteral("This will REMOVE %1 file(s) Kelvaris placed in the "
                                            "game, putting back any file they replaced.\r\n\r\n"
                                            "Are you sure?")
                                 .arg(paths.size());
    UiServices& ui = host_.Ui();
    if (ui.Message(question, MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    const QString game = host_.GameFolder();
    for (const QString& path : paths)
        if (!GameManifest::Restore(game, game + u'/' + path))
            ui.Message(QStringLiteral("\"%1\" could not be restored. Please check file "
                                      "permissions.")
                           .arg(path),
                       MsgIcon::Exclamation);
    Refresh();
}
