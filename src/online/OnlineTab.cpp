#include "OnlineTab.h"

#include "OnlineDownloads.h"
#include "TexturesRegFile.h"
#include "app/ControlTag.h"
#include "app/FormSettings.h"
#include "texture/CatalogueLoader.h"

#include <QComboBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPalette>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

const QString kDownloadCaption = QStringLiteral("Download and Apply now");
const QString kAbortCaption = QStringLiteral("Abort Downloads");

const QString kExplanation = QStringLiteral(
    "All the textures in this tab will be downloaded once a day if you start the game using the "
    "Splash Randomizer. You can use the buttons below to force them to be applied now, or to "
    "export a file you can give someone else to apply all your textures as well.");

QString indexed(const char* name, int n) {
    return QString::fromLatin1(name) + u'_' + QString::number(n);
}

template <typename Control> Control* named(Control* control, const QString& name) {
    control->setObjectName(name);
    return control;
}

// Text in the colour a refused address is shown in.
void paintRed(QWidget* control) {
    QPalette palette = control->palette();
    palette.setColor(control->foregroundRole(), QColor(255, 0, 0));
    control->setPalette(palette);
}

// Back to the colour the style gives the control's text.
void paintNormal(QWidget* control) {
    control->setPalette(QPalette());
}

} // namespace

OnlineTab::OnlineTab(UiServices& ui, OnlineDownloads& downloads, CatalogueLoader& catalogue,
                     QWidget* parent)
    : QWidget(parent), ui_(ui), downloads_(downloads), catalogue_(catalogue) {
    setObjectName(QStringLiteral("OnlineTab"));

    auto* layout = new QVBoxLayout(this);
    // The slot list and the chooser take turns at the top; the operations
    // stay at the foot of the tab whichever is shown.
    layout->addWidget(buildSlotList());
    layout->addWidget(buildChooser());
    layout->addStretch(1);
    layout->addWidget(buildWebOperations());

    connect(&downloads_, &OnlineDownloads::UrlRefused, this, &OnlineTab::markRefused);
    connect(&downloads_, &OnlineDownloads::SlotActiveChanged, this, &OnlineTab::setSlotActive);
    connect(&downloads_, &OnlineDownloads::Finished, this, &OnlineTab::downloadsFinished);
}

QGroupBox* OnlineTab::buildSlotList() {
    webFileFrame_ = named(new QGroupBox(QStringLiteral("Online Textures"), this),
                          QStringLiteral("webFileFrame"));
    auto* grid = new QGridLayout(webFileFrame_);
    grid->setVerticalSpacing(2);
    grid->setColumnStretch(1, 1);
    for (int n = 0; n < kDownloadSlots; ++n) {
        SlotRow& row = rows_[size_t(n)];
        row.webLabel =
            named(new QLabel(QStringLiteral("Image URL:"), webFileFrame_), indexed("webLabel", n));
        row.webURL = named(new QLineEdit(webFileFrame_), indexed("webURL", n));
        row.webFile = named(new QLineEdit(webFileFrame_), indexed("webFile", n));
        row.webFile->setReadOnly(true);
        row.webPick =
            named(new QPushButton(QStringLiteral("Pick..."), webFileFrame_), indexed("webPick", n));
        row.webLabel->setBuddy(row.webURL);

        // Two lines per slot, a gap between slots.
        const int line = 3 * n;
        grid->addWidget(row.webLabel, line, 0);
        grid->addWidget(row.webURL, line, 1, 1, 2);
        grid->addWidget(new QLabel(QStringLiteral("Texture:"), webFileFrame_), line + 1, 0);
        grid->addWidget(row.webFile, line + 1, 1);
        grid->addWidget(row.webPick, line + 1, 2);
        if (n + 1 < kDownloadSlots)
            grid->setRowMinimumHeight(line + 2, 6);

        connect(row.webPick, &QPushButton::clicked, this, [this, n] { webPick_Click(n); });
        connect(row.webURL, &QLineEdit::textChanged, this, [this, n] { webURL_Change(n); });
    }
    return webFileFrame_;
}

QGroupBox* OnlineTab::buildChooser() {
    webTexFrame_ =
        named(new QGroupBox(QStringLiteral("Destination"), this), QStringLiteral("webTexFrame"));
    webCategory_ = named(new QComboBox(webTexFrame_), QStringLiteral("webCategory"));
    webTexture_ = named(new QComboBox(webTexFrame_), QStringLiteral("webTexture"));
    webPickTexture_ = named(new QPushButton(QStringLiteral("Pick This Texture"), webTexFrame_),
                            QStringLiteral("webPickTexture"));
    webClear_ = named(new QPushButton(QStringLiteral("Clear Selection"), webTexFrame_),
                      QStringLiteral("webClear"));
    webCancel_ = named(new QPushButton(QStringLiteral("Keep Current"), webTexFrame_),
                       QStringLiteral("webCancel"));
    // Long lists: a catalogue category can hold hundreds of textures.
    webCategory_->setMaxVisibleItems(20);
    webTexture_->setMaxVisibleItems(20);

    auto* grid = new QGridLayout(webTexFrame_);
    grid->setColumnStretch(1, 1);
    grid->addWidget(new QLabel(QStringLiteral("Category:"), webTexFrame_), 0, 0);
    grid->addWidget(webCategory_, 0, 1);
    grid->addWidget(new QLabel(QStringLiteral("Texture:"), webTexFrame_), 1, 0);
    grid->addWidget(webTexture_, 1, 1);
    auto* buttons = new QHBoxLayout;
    buttons->addWidget(webPickTexture_);
    buttons->addWidget(webClear_);
    buttons->addWidget(webCancel_);
    buttons->addStretch(1);
    grid->addLayout(buttons, 2, 0, 1, 2);
    webTexFrame_->hide();

    connect(webCategory_, &QComboBox::currentIndexChanged, this, &OnlineTab::webCategory_Click);
    connect(webPickTexture_, &QPushButton::clicked, this, &OnlineTab::webPickTexture_Click);
    connect(webClear_, &QPushButton::clicked, this, &OnlineTab::webClear_Click);
    connect(webCancel_, &QPushButton::clicked, this, &OnlineTab::webCancel_Click);
    return webTexFrame_;
}

QGroupBox* OnlineTab::buildWebOperations() {
    auto* frame = named(new QGroupBox(QStringLiteral("Web Operations"), this),
                        QStringLiteral("webOperationsFrame"));
    auto* explanation = new QLabel(kExplanation, frame);
    explanation->setWordWrap(true);
    webRegFile_ = named(new QPushButton(QStringLiteral("Export Online Textures to a file"), frame),
                        QStringLiteral("webRegFile"));
    webImport_ = named(new QPushButton(QStringLiteral("Import Online Textures from a file"), frame),
                       QStringLiteral("webImport"));
    webDownload_ = named(new QPushButton(kDownloadCaption, frame), QStringLiteral("webDownload"));

    auto* buttons = new QHBoxLayout;
    buttons->addWidget(webRegFile_);
    buttons->addWidget(webImport_);
    buttons->addStretch(1);
    buttons->addWidget(webDownload_);
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(explanation);
    layout->addLayout(buttons);

    connect(webRegFile_, &QPushButton::clicked, this, &OnlineTab::webRegFile_Click);
    connect(webImport_, &QPushButton::clicked, this, &OnlineTab::webImport_Click);
    connect(webDownload_, &QPushButton::clicked, this, &OnlineTab::webDownload_Click);
    return frame;
}

QStringList OnlineTab::Links() const {
    QStringList links;
    for (const SlotRow& row : rows_)
        links << row.webURL->text();
    return links;
}

void OnlineTab::webPick_Click(int n) {
    catalogue_.LoadCatalogue(0, webCategory_, webTexture_);
    SetTag(webPickTexture_, QString::number(n));
    webTexFrame_->show();
    webFileFrame_->hide();
}

void OnlineTab::webCategory_Click() {
    const int k = webCategory_->currentIndex();
    if (k >= 0)
        catalogue_.LoadCatalogue(k, webCategory_, webTexture_);
}

void OnlineTab::webPickTexture_Click() {
    // With no texture selected (an empty category, a catalogue that could not
    // be read) there is nothing to store: the chooser just closes.
    const int slot = editedSlot();
    const int i = webTexture_->currentIndex();
    const CatalogueSelection& selection = catalogue_.Selection();
    if (slot >= 0 && i >= 0 && i < selection.Count()) {
        const QString line = webTexture_->currentText();
        rows_[size_t(slot)].webFile->setText(line);
        StorePickedTexture(slot, {line, selection.widths[i], selection.heights[i],
                                  selection.paths[i], selection.files[i]});
    }
    showSlotList();
}

void OnlineTab::webClear_Click() {
    const int slot = editedSlot();
    if (slot >= 0) {
        rows_[size_t(slot)].webFile->clear();
        StoreClearedSelection(slot);
    }
    showSlotList();
}

void OnlineTab::webCancel_Click() {
    showSlotList();
}

void OnlineTab::showSlotList() {
    webTexFrame_->hide();
    webFileFrame_->show();
}

int OnlineTab::editedSlot() const {
    bool ok = false;
    const int slot = Tag(webPickTexture_).toInt(&ok);
    return ok && slot >= 0 && slot < kDownloadSlots ? slot : -1;
}

void OnlineTab::webURL_Change(int n) {
    const SlotRow& row = rows_[size_t(n)];
    paintNormal(row.webURL);
    paintNormal(row.webLabel);
}

void OnlineTab::markRefused(int n) {
    if (n < 0 || n >= kDownloadSlots)
        return;
    const SlotRow& row = rows_[size_t(n)];
    paintRed(row.webURL);
    paintRed(row.webLabel);
}

void OnlineTab::setSlotActive(int n, bool Active) {
    if (n < 0 || n >= kDownloadSlots)
        return;
    const SlotRow& row = rows_[size_t(n)];
    for (QWidget* control : {static_cast<QWidget*>(row.webFile), static_cast<QWidget*>(row.webPick),
                             static_cast<QWidget*>(row.webURL)})
        control->setEnabled(!Active);
}

void OnlineTab::webDownload_Click() {
    const QString caption = webDownload_->text();
    if (caption == kDownloadCaption) {
        for (int n = 0; n < kDownloadSlots; ++n) {
            const SlotRow& row = rows_[size_t(n)];
            downloads_.StartDownload(n, row.webFile->text(), row.webURL->text());
        }
        // Every slot empty or refused: nothing runs, the caption stays.
        if (downloads_.AnyActive())
            webDownload_->setText(kAbortCaption);
    } else if (caption == kAbortCaption) {
        downloads_.AbortDownloads();
        webDownload_->setText(kDownloadCaption);
    }
}

void OnlineTab::downloadsFinished() {
    webDownload_->setText(kDownloadCaption);
}

void OnlineTab::webRegFile_Click() {
    AskAndExportOnlineTextures(ui_, Links());
}

void OnlineTab::webImport_Click() {
    // The addresses typed so far are stored first, as the close would store
    // them, so a slot the file leaves out keeps its address; afterwards the
    // rows show what the settings now hold, and the close saves that.
    for (int n = 0; n < kDownloadSlots; ++n)
        SaveControlSetting(*this, OnlineLinkSetting(n));
    AskAndImportOnlineTextures(ui_);
    reloadSlotRows();
}

void OnlineTab::reloadSlotRows() {
    for (int n = 0; n < kDownloadSlots; ++n) {
        LoadControlSetting(*this, OnlineNameSetting(n));
        LoadControlSetting(*this, OnlineLinkSetting(n));
    }
}
