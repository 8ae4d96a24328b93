#include "SettingsTab.h"

#include "ControlTag.h"
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

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(frame);
    layout->addWidget(textures);
    layout->addStretch(1);

    connect(setAuto_, &QCheckBox::clicked, this, &SettingsTab::setAuto_Click);
    connect(setBrowse_, &QPushButton::clicked, this, &SettingsTab::setBrowse_Click);
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
