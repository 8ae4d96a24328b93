#include "SettingsTab.h"

#include "ControlTag.h"
#include "GameInstallations.h"
#include "NumberText.h"
#include "PathUtils.h"
#include "UiServices.h"
#include "modRegistry.h"

#include <QCheckBox>
#include <QEvent>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>

SettingsTab::SettingsTab(UiServices& ui, QWidget* parent) : QWidget(parent), ui_(ui) {
    setObjectName(QStringLiteral("SettingsTab"));

    auto* frame = new QGroupBox(QStringLiteral("Game"), this);
    setCohRegKey_ = new QLabel(QStringLiteral("Game location:"), frame);
    setCohRegKey_->setObjectName(QStringLiteral("setCohRegKey"));
    SetTag(setCohRegKey_, QStringLiteral("Coh"));
    setCohPath_ = new QLineEdit(frame);
    setCohPath_->setObjectName(QStringLiteral("setCohPath"));
    setBrowse_ = new QPushButton(QStringLiteral("Browse..."), frame);
    setBrowse_->setObjectName(QStringLiteral("setBrowse"));

    auto* sizeLabel = new QLabel(QStringLiteral("Screen size:"), frame);
    setWidth_ = new QLineEdit(frame);
    setWidth_->setObjectName(QStringLiteral("setWidth"));
    setHeight_ = new QLineEdit(frame);
    setHeight_->setObjectName(QStringLiteral("setHeight"));
    for (QLineEdit* box : {setWidth_, setHeight_}) {
        box->setMaximumWidth(80);
        box->installEventFilter(this);
    }
    auto* times = new QLabel(QStringLiteral("x"), frame);

    setAuto_ = new QCheckBox(QStringLiteral("Autodetect path and size from Registry"), frame);
    setAuto_->setObjectName(QStringLiteral("setAuto"));

    auto* grid = new QGridLayout(frame);
    grid->addWidget(setCohRegKey_, 0, 0);
    grid->addWidget(setCohPath_, 0, 1, 1, 4);
    grid->addWidget(setBrowse_, 0, 5);
    grid->addWidget(sizeLabel, 1, 0);
    grid->addWidget(setWidth_, 1, 1);
    grid->addWidget(times, 1, 2);
    grid->addWidget(setHeight_, 1, 3);
    grid->setColumnStretch(4, 1);
    grid->addWidget(setAuto_, 2, 0, 1, 6);

    auto* textures = new QGroupBox(QStringLiteral("Textures"), this);
    setCompression_ =
        new QCheckBox(QStringLiteral("Compress textures using NVIDIA's tool"), textures);
    setCompression_->setObjectName(QStringLiteral("setCompression"));
    auto* texturesLayout = new QVBoxLayout(textures);
    texturesLayout->addWidget(setCompression_);

    // The copies of the game the launchers on this machine keep.
    auto* found = new QGroupBox(QStringLiteral("Installations found"), this);
    setGames_ = new QTreeWidget(found);
    setGames_->setObjectName(QStringLiteral("setGames"));
    setGames_->setHeaderLabels(
        {QStringLiteral("Launcher"), QStringLiteral("Prefix"), QStringLiteral("Game folder")});
    setGames_->setRootIsDecorated(false);
    setGames_->setMaximumHeight(120);
    setSearch_ = new QPushButton(QStringLiteral("Search again"), found);
    setSearch_->setObjectName(QStringLiteral("setSearch"));
    auto* foundLayout = new QVBoxLayout(found);
    foundLayout->addWidget(setGames_);
    foundLayout->addWidget(setSearch_, 0, Qt::AlignRight);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(found);
    layout->addWidget(textures);
    layout->addStretch(1);

    connect(setAuto_, &QCheckBox::clicked, this, &SettingsTab::setAuto_Click);
    connect(setBrowse_, &QPushButton::clicked, this, &SettingsTab::setBrowse_Click);
    connect(setSearch_, &QPushButton::clicked, this, &SettingsTab::FindInstallations);
    connect(setGames_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
        setGames_Choose(setGames_->indexOfTopLevelItem(item));
    });
    connect(setGames_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
        setGames_Choose(setGames_->indexOfTopLevelItem(item));
    });
    connect(setCohPath_, &QLineEdit::textChanged, this, &SettingsTab::GameFolderChanged);
}

QString SettingsTab::GameFolder() const {
    return setCohPath_->text();
}

void SettingsTab::SetGameFolder(const QString& folder) {
    setCohPath_->setText(folder);
}

QString SettingsTab::ScreenWidthText() const {
    return setWidth_->text();
}

QString SettingsTab::ScreenHeightText() const {
    return setHeight_->text();
}

bool SettingsTab::CompressTextures() const {
    return setCompression_->isChecked();
}

void SettingsTab::setManualControlsEnabled(bool enabled) {
    for (QWidget* control : {static_cast<QWidget*>(setCohPath_), static_cast<QWidget*>(setBrowse_),
                             static_cast<QWidget*>(setWidth_), static_cast<QWidget*>(setHeight_)})
        control->setEnabled(enabled);
}

void SettingsTab::setAuto_Click() {
    setManualControlsEnabled(!setAuto_->isChecked());
    DetectGame();
}

void SettingsTab::DetectGame() {
    const QString key = QStringLiteral("Software\\Cryptic\\") + Tag(setCohRegKey_);
    const QString folder = modRegistry::QueryValue(key, QStringLiteral("Installation Directory"));
    if (folder.isEmpty()) {
        // Without the game's keys there is nothing to detect; the check mark
        // is left as it is.
        setAuto_->setEnabled(false);
        setManualControlsEnabled(true);
        return;
    }
    setAuto_->setEnabled(true);
    if (!setAuto_->isChecked())
        return;
    setManualControlsEnabled(false);
    setCohPath_->setText(folder);
    const QString width = modRegistry::QueryValue(key, QStringLiteral("screenX"));
    if (!width.isEmpty())
        setWidth_->setText(width);
    const QString height = modRegistry::QueryValue(key, QStringLiteral("screenY"));
    if (!height.isEmpty())
        setHeight_->setText(height);
}

void SettingsTab::setBrowse_Click() {
    FileDialogRequest request;
    request.startFolder = setCohPath_->text();
    request.proposedName = QStringLiteral("cityofheroes.exe");
    request.filter = QStringLiteral("City of Heroes|cityofheroes.exe;cityofvillains.exe");
    const QString folder = ReturnPath(ui_.OpenFile(request));
    if (!folder.isEmpty())
        setCohPath_->setText(folder);
    Q_EMIT GameFolderChanged();
}

bool SettingsTab::eventFilter(QObject* watched, QEvent* event) {
    auto* box = qobject_cast<QLineEdit*>(watched);
    if (box && (box == setWidth_ || box == setHeight_)) {
        if (event->type() == QEvent::FocusIn) {
            // Select after the click that gave the focus has placed the cursor.
            QTimer::singleShot(0, box, &QLineEdit::selectAll);
        } else if (event->type() == QEvent::FocusOut) {
            box->setText(NumberWithoutSign(LeadingNumber(box->text())));
        }
    }
    return QWidget::eventFilter(watched, event);
}

void SettingsTab::FindInstallations() {
    setGames_->clear();
    for (const GameInstallation& game : FindGameInstallations()) {
        auto* item = new QTreeWidgetItem(setGames_, {game.launcher, game.prefix, game.gameFolder});
        item->setToolTip(2, game.gameFolder);
        if (game.screen)
            item->setData(0, Qt::UserRole, game.screen.value());
    }
    for (int column = 0; column < setGames_->columnCount(); ++column)
        setGames_->resizeColumnToContents(column);
}

void SettingsTab::setGames_Choose(int row) {
    const QTreeWidgetItem* item = setGames_->topLevelItem(row);
    // Detection from the game's keys owns the controls while it is on.
    if (!item || setAuto_->isChecked())
        return;
    setCohPath_->setText(item->text(2));
    const QSize screen = item->data(0, Qt::UserRole).toSize();
    if (screen.isValid()) {
        setWidth_->setText(QString::number(screen.width()));
        setHeight_->setText(QString::number(screen.height()));
    }
}
