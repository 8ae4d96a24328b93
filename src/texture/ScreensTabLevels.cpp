// The Screens tab's level adjustment: black and white levels tried live on
// the preview, then applied to the full screen picture.
#include "PreviewBox.h"
#include "ScreensTab.h"
#include "ScreensTabControls.h"
#include "image/LevelAdjust.h"
#include "image/LoadImage.h"
#include "image/SharedImages.h"

#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLayout>
#include <QScrollBar>

namespace {

QScrollBar* makeLevel(const char* name, QWidget* parent) {
    auto* level = new QScrollBar(Qt::Horizontal, parent);
    level->setObjectName(QString::fromLatin1(name));
    level->setRange(0, 255);
    level->setPageStep(10);
    return level;
}

QLineEdit* makeDisplay(const char* name, QWidget* parent) {
    QLineEdit* display = makeBox(name, parent);
    display->setReadOnly(true);
    display->setMaximumWidth(48);
    return display;
}

} // namespace

QWidget* ScreensTab::buildAdjustmentFrame() {
    adjFrame_ = new QGroupBox(QStringLiteral("Image adjustment"), this);
    adjFrame_->setObjectName(QStringLiteral("adjFrame"));
    adjBlack_ = makeLevel("adjBlack", adjFrame_);
    adjWhite_ = makeLevel("adjWhite", adjFrame_);
    adjWhite_->setValue(255);
    adjBlackDisplay_ = makeDisplay("adjBlackDisplay", adjFrame_);
    adjWhiteDisplay_ = makeDisplay("adjWhiteDisplay", adjFrame_);
    adjBlackDisplay_->setText(QStringLiteral("0"));
    adjWhiteDisplay_->setText(QStringLiteral("255"));
    QPushButton* adjApply = makeButton("Apply", "adjApply", adjFrame_);
    QPushButton* adjRevert = makeButton("Reload", "adjRevert", adjFrame_);
    QPushButton* adjCancel = makeButton("Cancel", "adjCancel", adjFrame_);

    auto* grid = new QGridLayout(adjFrame_);
    grid->addWidget(new QLabel(QStringLiteral("Black level:"), adjFrame_), 0, 0);
    grid->addWidget(adjBlack_, 0, 1);
    grid->addWidget(adjBlackDisplay_, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("White level:"), adjFrame_), 1, 0);
    grid->addWidget(adjWhite_, 1, 1);
    grid->addWidget(adjWhiteDisplay_, 1, 2);
    auto* buttons = new QHBoxLayout;
    buttons->addStretch(1);
    buttons->addWidget(adjApply);
    buttons->addWidget(adjRevert);
    buttons->addWidget(adjCancel);
    grid->addLayout(buttons, 2, 0, 1, 3);
    adjFrame_->hide();

    connect(adjBlack_, &QScrollBar::valueChanged, this, &ScreensTab::adjBlack_Change);
    connect(adjWhite_, &QScrollBar::valueChanged, this, &ScreensTab::adjWhite_Change);
    connect(adjApply, &QPushButton::clicked, this, &ScreensTab::adjApply_Click);
    connect(adjRevert, &QPushButton::clicked, this, &ScreensTab::adjRevert_Click);
    connect(adjCancel, &QPushButton::clicked, this, &ScreensTab::adjCancel_Click);
    return adjFrame_;
}

void ScreensTab::remakeWorkingPreview(bool adjusted) {
    auto copy = images_.previewSource->Resample(kPreviewHeight, images_.previewWidth);
    images_.previewWorking = std::make_shared<cDIBSection>(copy ? std::move(*copy) : cDIBSection());
    if (adjusted)
        AdjustLevels(*images_.previewWorking, short(adjBlack_->value()), short(adjWhite_->value()));
    scrPreview_->ShowPicture(images_.previewWorking, images_.previewLeft);
}

void ScreensTab::scrPreview_Click() {
    DisplayImageControls();
}

void ScreensTab::DisplayImageControls() {
    if (scrImage_->text().isEmpty() || adjFrame_->isVisible())
        return;
    remakeWorkingPreview(false);
    adjBlack_->setValue(0);
    adjBlackDisplay_->setText(QStringLiteral("0"));
    adjWhite_->setValue(255);
    adjWhiteDisplay_->setText(QStringLiteral("255"));
    adjFrame_->show();
    // The sliders need room: the window grows to what its tabs now need, so
    // the preview keeps its 180 rows and the save buttons stay below it.
    if (QWidget* top = window(); top && top->layout()) {
        if (layout())
            layout()->activate();
        top->layout()->activate();
        top->resize(top->size().expandedTo(top->minimumSizeHint()));
    }
}

void ScreensTab::adjBlack_Change() {
    if (adjBlack_->value() >= adjWhite_->value()) {
        adjBlack_->setValue(adjWhite_->value() - 1); // comes back here corrected
        return;
    }
    adjBlackDisplay_->setText(QString::number(adjBlack_->value()));
    remakeWorkingPreview(true);
}

void ScreensTab::adjWhite_Change() {
    if (adjWhite_->value() <= adjBlack_->value()) {
        adjWhite_->setValue(adjBlack_->value() + 1);
        return;
    }
    adjWhiteDisplay_->setText(QString::number(adjWhite_->value()));
    remakeWorkingPreview(true);
}

void ScreensTab::adjApply_Click() {
    const int black = adjBlack_->value();
    const int white = adjWhite_->value();
    if (white < 255 || black >= 1) {
        AdjustLevels(*images_.screenImage, short(black), short(white));
        auto preview = images_.screenImage->Resample(kPreviewHeight, images_.previewWidth);
        images_.previewSource =
            std::make_shared<cDIBSection>(preview ? std::move(*preview) : cDIBSection());
        UpdatePreviews();
        remakeWorkingPreview(false);
    }
    adjFrame_->hide();
}

void ScreensTab::adjRevert_Click() {
    // Reading the file again discards every adjustment applied so far.
    LoadScreenImage(scrImage_->text());
    adjFrame_->hide();
}

void ScreensTab::adjCancel_Click() {
    remakeWorkingPreview(false);
    adjFrame_->hide();
}
