#include "ScreensTab.h"

#include "PreviewBox.h"
#include "ScreenInstall.h"
#include "ScreenTargets.h"
#include "ScreensTabControls.h"
#include "TextureWriter.h"
#include "app/PathUtils.h"
#include "app/TabHost.h"
#include "app/UiServices.h"
#include "image/FrameOverlay.h"
#include "image/ImageOpenDialog.h"
#include "image/LoadImage.h"
#include "image/SharedImages.h"

#include <QCheckBox>
#include <QEvent>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

ScreensTab::ScreensTab(TabHost& host, SharedImages& images, QWidget* parent)
    : QWidget(parent), host_(host), images_(images) {
    setObjectName(QStringLiteral("ScreensTab"));

    auto* pictureFrame = new QGroupBox(QStringLiteral("Image"), this);
    scrImage_ = makeBox("scrImage", pictureFrame);
    scrImage_->setReadOnly(true);
    scrBrowse_ = makeButton("Browse...", "scrBrowse", pictureFrame);
    scrPreview_ = new PreviewBox(pictureFrame);
    scrSaveHL_ = makeButton("Save as login screen", "scrSaveHL", pictureFrame);
    scrSaveHC_ = makeButton("Save as character selection screen", "scrSaveHC", pictureFrame);
    for (QPushButton* button : {scrSaveHL_, scrSaveHC_}) {
        button->setEnabled(false);
        button->setMouseTracking(true);
        button->installEventFilter(this);
    }
    auto* fileRow = new QHBoxLayout;
    fileRow->addWidget(new QLabel(QStringLiteral("Input file:"), pictureFrame));
    fileRow->addWidget(scrImage_, 1);
    fileRow->addWidget(scrBrowse_);
    auto* saveRow = new QHBoxLayout;
    saveRow->addWidget(scrSaveHL_);
    saveRow->addWidget(scrSaveHC_);
    auto* pictureLayout = new QVBoxLayout(pictureFrame);
    pictureLayout->addLayout(fileRow);
    pictureLayout->addWidget(scrPreview_, 0, Qt::AlignHCenter);
    pictureLayout->addLayout(saveRow);
    // The preview and the save buttons are never squeezed together, whatever
    // else the tab shows (the word-wrapped frame rule below would otherwise
    // take their rows when the level sliders open).
    pictureFrame->setMinimumHeight(pictureFrame->minimumSizeHint().height());

    QWidget* framesFrame = buildFramesFrame();
    buildAdjustmentFrame();

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(pictureFrame);
    layout->addWidget(adjFrame_);
    layout->addWidget(framesFrame);
    layout->addStretch(1);

    connect(scrBrowse_, &QPushButton::clicked, this, &ScreensTab::scrBrowse_Click);
    connect(scrSaveHL_, &QPushButton::clicked, this, &ScreensTab::scrSaveHL_Click);
    connect(scrSaveHC_, &QPushButton::clicked, this, &ScreensTab::scrSaveHC_Click);
    connect(scrPreview_, &PreviewBox::Clicked, this, &ScreensTab::scrPreview_Click);
}

void ScreensTab::UpdateButtons(const QString& gameFolder) {
    const bool enabled = !gameFolder.isEmpty() && !scrImage_->text().isEmpty();
    scrSaveHL_->setEnabled(enabled);
    scrSaveHC_->setEnabled(enabled);
}

void ScreensTab::scrBrowse_Click() {
    const QString chosen = BrowseImage(host_.Ui());
    if (chosen.isEmpty())
        return;
    scrImage_->setText(chosen);
    LoadScreenImage(chosen);
    host_.UpdateButtons();
}

PreviewMaker ScreensTab::ScreenPreviewMaker() {
    return [this](const cDIBSection& image) {
        images_.previewWidth = PreviewWidth(host_.ScreenWidthText(), host_.ScreenHeightText());
        images_.previewLeft = (scrPreview_->width() - images_.previewWidth) / 2;
        auto preview = image.Resample(kPreviewHeight, images_.previewWidth);
        images_.previewSource =
            std::make_shared<cDIBSection>(preview ? std::move(*preview) : cDIBSection());
        images_.previewOnShow = std::make_shared<cDIBSection>(*images_.previewSource);
        images_.previewShown = 0;
        paintPreview();
    };
}

bool ScreensTab::LoadScreenImage(const QString& FileName, bool DoPreviews) {
    if (!LoadImage(FileName, *images_.screenImage, kScreenWidth, kScreenHeight, host_.Busy(),
                   host_.Ui(), DoPreviews ? ScreenPreviewMaker() : PreviewMaker()))
        return false;
    if (DoPreviews)
        UpdatePreviews();
    return true;
}

bool ScreensTab::FramesOn() const {
    return scrFrames_->isChecked();
}

QString ScreensTab::FrameFile(const ScreenTarget& target) const {
    return &target == &kLoginScreen ? FrameHL_->text() : FrameHC_->text();
}

void ScreensTab::SetImageFile(const QString& FileName) {
    scrImage_->setText(FileName);
}

void ScreensTab::paintPreview() {
    scrPreview_->ShowPicture(images_.previewOnShow, images_.previewLeft);
}

void ScreensTab::showPreview(int which) {
    if (images_.previewShown == which)
        return;
    images_.previewOnShow = which == 1 ? images_.previewHL : images_.previewHC;
    paintPreview();
    images_.previewShown = which;
}

void ScreensTab::scrSaveHL_MouseMove() {
    showPreview(1);
}

void ScreensTab::scrSaveHC_MouseMove() {
    showPreview(2);
}

bool ScreensTab::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove || event->type() == QEvent::Enter) {
        if (watched == scrSaveHL_)
            scrSaveHL_MouseMove();
        else if (watched == scrSaveHC_)
            scrSaveHC_MouseMove();
    }
    return QWidget::eventFilter(watched, event);
}

void ScreensTab::scrSaveHL_Click() {
    save(scrSaveHL_, FrameHL_, kLoginScreen);
}

void ScreensTab::scrSaveHC_Click() {
    save(scrSaveHC_, FrameHC_, kCharacterScreen);
}

void ScreensTab::save(QPushButton* button, QLineEdit* frameBox, const ScreenTarget& target) {
    button->setEnabled(false);
    if (!scrFrames_->isChecked())
        images_.outputImage = images_.screenImage;
    else
        images_.outputImage = ApplyFrame(frameBox->text(), images_.screenImage);

    WriteScreenPicture(target, *images_.outputImage, host_.TextureWriteContext(), host_.Busy(),
                       host_.Ui());
    button->setEnabled(true);
}
