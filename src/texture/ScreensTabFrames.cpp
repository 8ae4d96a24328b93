// The Screens tab's frame overlay: choosing the frames, showing them in the
// previews and switching them on.
#include "PreviewBox.h"
#include "ScreensTab.h"
#include "ScreensTabControls.h"
#include "app/BusyHost.h"
#include "app/PathUtils.h"
#include "app/TabHost.h"
#include "app/UiServices.h"
#include "image/FrameOverlay.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/SharedImages.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QLabel>

QWidget* ScreensTab::buildFramesFrame() {
    auto* frame = new QGroupBox(QStringLiteral("Frames"), this);
    scrFrames_ = new QCheckBox(QStringLiteral("Overlay image frames"), frame);
    scrFrames_->setObjectName(QStringLiteral("scrFrames"));
    scrFramesPreview_ = new QCheckBox(QStringLiteral("Display frames in preview"), frame);
    scrFramesPreview_->setObjectName(QStringLiteral("scrFramesPreview"));
    FrameHL_ = makeBox("FrameHL", frame);
    FrameHC_ = makeBox("FrameHC", frame);
    BrowseHL_ = makeButton("Browse...", "BrowseHL", frame);
    BrowseHC_ = makeButton("Browse...", "BrowseHC", frame);
    // The spaces wrap the label between its two sentences.
    auto* rule = new QLabel(QStringLiteral("Image frames must be 1024x768 pixels in size.") +
                                QString(19, u' ') +
                                QStringLiteral("Pixels with the color #ff00ff will be treated as "
                                               "transparent."),
                            frame);
    rule->setWordWrap(true);
    // As wide as the longer sentence, so the line breaks in the run of spaces
    // and each sentence stands on a line of its own.
    rule->setMaximumWidth(rule->fontMetrics().horizontalAdvance(QStringLiteral(
                              "Pixels with the color #ff00ff will be treated as transparent.")) +
                          8);

    auto* grid = new QGridLayout(frame);
    grid->addWidget(scrFrames_, 0, 0, 1, 2);
    grid->addWidget(scrFramesPreview_, 0, 2);
    grid->addWidget(new QLabel(QStringLiteral("Login screen:"), frame), 1, 0);
    grid->addWidget(FrameHL_, 1, 1);
    grid->addWidget(BrowseHL_, 1, 2);
    grid->addWidget(new QLabel(QStringLiteral("Characters:"), frame), 2, 0);
    grid->addWidget(FrameHC_, 2, 1);
    grid->addWidget(BrowseHC_, 2, 2);
    grid->addWidget(rule, 3, 0, 1, 3);

    connect(scrFrames_, &QCheckBox::clicked, this, &ScreensTab::scrFrames_Click);
    connect(scrFramesPreview_, &QCheckBox::clicked, this, &ScreensTab::scrFramesPreview_Click);
    connect(BrowseHL_, &QPushButton::clicked, this, &ScreensTab::BrowseHL_Click);
    connect(BrowseHC_, &QPushButton::clicked, this, &ScreensTab::BrowseHC_Click);
    return frame;
}

void ScreensTab::BrowseFrame(QLineEdit* box) {
    FileDialogRequest request;
    request.startFolder = ProgramFolder();
    request.proposedName = box->text();
    request.filter = QStringLiteral("Bitmap images (bmp,png,gif)|*.bmp;*.png;*.gif");
    const QString chosen = host_.Ui().OpenFile(request);
    if (chosen.isEmpty())
        return;
    const QImage picture = DecodePicture(chosen);
    // The frame goes into a bitmap of its own: the output bitmap may be the
    // screen image itself, which must not be overwritten.
    auto frame = std::make_shared<cDIBSection>();
    if (picture.isNull() || !frame->CreateFromPicture(picture)) {
        host_.Ui().Message(QStringLiteral("Image could not be loaded."), MsgIcon::Exclamation);
        return;
    }
    images_.outputImage = frame;
    if (frame->Width() == kFrameWidth && frame->Height() == kFrameHeight)
        box->setText(chosen);
    else
        host_.Ui().Message(QStringLiteral("Image is not 1024x768 pixels in size."),
                           MsgIcon::Exclamation);
}

void ScreensTab::BrowseHL_Click() {
    BrowseFrame(FrameHL_);
}

void ScreensTab::BrowseHC_Click() {
    BrowseFrame(FrameHC_);
}

void ScreensTab::UpdatePreviews() {
    if (scrFrames_->isChecked() && scrFramesPreview_->isChecked()) {
        auto framedPreview = [this](QLineEdit* frameBox) {
            images_.outputImage = ApplyFrame(frameBox->text(), images_.screenImage);
            auto preview = images_.outputImage->Resample(kPreviewHeight, images_.previewWidth);
            return std::make_shared<cDIBSection>(preview ? std::move(*preview) : cDIBSection());
        };
        images_.previewHL = framedPreview(FrameHL_);
        images_.previewHC = framedPreview(FrameHC_);
        // The preview on show follows the screen it stands for.
        images_.previewOnShow = images_.previewShown == 2 ? images_.previewHC : images_.previewHL;
    } else {
        // Without frames both screens look the same: one bitmap serves as
        // the preview on show and as both previews.
        auto copy = images_.previewSource->Resample(kPreviewHeight, images_.previewWidth);
        auto unframed = std::make_shared<cDIBSection>(copy ? std::move(*copy) : cDIBSection());
        images_.previewOnShow = unframed;
        images_.previewHL = unframed;
        images_.previewHC = unframed;
    }
    host_.Busy().SetBusy(false, false, 0, QString());
    paintPreview();
}

void ScreensTab::scrFrames_Click() {
    if (!scrImage_->text().isEmpty())
        UpdatePreviews();
    scrFramesPreview_->setEnabled(scrFrames_->isChecked());
}

void ScreensTab::scrFramesPreview_Click() {
    if (!scrImage_->text().isEmpty())
        UpdatePreviews();
}
