#include "TexturesTab.h"

#include "CatalogueBuilder.h"
#include "CatalogueLoader.h"
#include "ScreensTabControls.h"
#include "TextureReader.h"
#include "app/TabHost.h"
#include "app/UiServices.h"
#include "image/ImageOpenDialog.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/SharedImages.h"
#include "texture/TextureWriter.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QVBoxLayout>

namespace {

QComboBox* makeList(const char* name, QWidget* parent) {
    auto* list = new QComboBox(parent);
    list->setObjectName(QString::fromLatin1(name));
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return list;
}

} // namespace

TexturesTab::TexturesTab(TabHost& host, QWidget* parent) : QWidget(parent), host_(host) {
    setObjectName(QStringLiteral("TexturesTab"));

    auto* sourceFrame = new QGroupBox(QStringLiteral("Source image"), this);
    texInput_ = makeBox("texInput", sourceFrame);
    texBrowse_ = makeButton("Browse...", "texBrowse", sourceFrame);
    texAlpha_ = makeBox("texAlpha", sourceFrame);
    texAlphaBrowse_ = makeButton("Browse...", "texAlphaBrowse", sourceFrame);
    auto* explanation = new QLabel(QStringLiteral("The alpha mask is a grayscale bitmap file "
                                                  "containing the transparent areas of the "
                                                  "image. Black is transparent, white is opaque."),
                                   sourceFrame);
    explanation->setWordWrap(true);
    auto* sourceLayout = new QGridLayout(sourceFrame);
    sourceLayout->addWidget(new QLabel(QStringLiteral("Input file:"), sourceFrame), 0, 0);
    sourceLayout->addWidget(texInput_, 0, 1);
    sourceLayout->addWidget(texBrowse_, 0, 2);
    sourceLayout->addWidget(new QLabel(QStringLiteral("Alpha mask:"), sourceFrame), 1, 0);
    sourceLayout->addWidget(texAlpha_, 1, 1);
    sourceLayout->addWidget(texAlphaBrowse_, 1, 2);
    sourceLayout->addWidget(explanation, 2, 0, 1, 3);
    sourceLayout->setColumnStretch(1, 1);

    auto* destinationFrame = new QGroupBox(QStringLiteral("Destination"), this);
    texCategory_ = makeList("texCategory", destinationFrame);
    texTexture_ = makeList("texTexture", destinationFrame);
    texWriteAll_ = new QCheckBox(QStringLiteral("Apply to all textures in the selected category"),
                                 destinationFrame);
    texWriteAll_->setObjectName(QStringLiteral("texWriteAll"));
    texSave_ = makeButton("Save Texture", "texSave", destinationFrame);
    texSave_->setEnabled(false);
    texReset_ = makeButton("Restore Default Texture", "texReset", destinationFrame);
    texBuild_ = new QPushButton(BuildCatalogueCaption(), destinationFrame);
    texBuild_->setObjectName(QStringLiteral("texBuild"));
    texBuild_->setToolTip(QStringLiteral("Lists every interface texture found in the game's own "
                                         "archives, with its real size."));
    auto* buttonRow = new QHBoxLayout;
    buttonRow->addWidget(texSave_);
    buttonRow->addWidget(texReset_);
    buttonRow->addStretch(1);
    buttonRow->addWidget(texBuild_);
    auto* destinationLayout = new QGridLayout(destinationFrame);
    destinationLayout->addWidget(new QLabel(QStringLiteral("Category:"), destinationFrame), 0, 0);
    destinationLayout->addWidget(texCategory_, 0, 1);
    destinationLayout->addWidget(new QLabel(QStringLiteral("Texture:"), destinationFrame), 1, 0);
    destinationLayout->addWidget(texTexture_, 1, 1);
    destinationLayout->addWidget(texWriteAll_, 2, 0, 1, 2);
    destinationLayout->addLayout(buttonRow, 3, 0, 1, 2);
    destinationLayout->setColumnStretch(1, 1);

    // See before writing: the picture, the mask, and what the game has now
    // at the chosen texture.
    auto* previewFrame = new QGroupBox(QStringLiteral("Preview"), this);
    auto* previewLayout = new QGridLayout(previewFrame);
    const char* const captions[] = {"Picture", "Alpha mask", "In the game now"};
    QLabel** thumbnails[] = {&texPicturePreview_, &texMaskPreview_, &texInstalledPreview_};
    for (int i = 0; i < 3; ++i) {
        *thumbnails[i] = new QLabel(previewFrame);
        (*thumbnails[i])->setFixedSize(kThumbnail, kThumbnail);
        (*thumbnails[i])->setAlignment(Qt::AlignCenter);
        (*thumbnails[i])->setFrameShape(QFrame::StyledPanel);
        previewLayout->addWidget(new QLabel(QString::fromLatin1(captions[i]), previewFrame), 0, i,
                                 Qt::AlignHCenter);
        previewLayout->addWidget(*thumbnails[i], 1, i, Qt::AlignHCenter);
    }
    texPicturePreview_->setObjectName(QStringLiteral("texPicturePreview"));
    texMaskPreview_->setObjectName(QStringLiteral("texMaskPreview"));
    texInstalledPreview_->setObjectName(QStringLiteral("texInstalledPreview"));
    texInstalledText_ = new QLabel(previewFrame);
    texInstalledText_->setObjectName(QStringLiteral("texInstalledText"));
    texInstalledText_->setWordWrap(true);
    previewLayout->addWidget(texInstalledText_, 2, 2, Qt::AlignHCenter);

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sourceFrame);
    layout->addWidget(destinationFrame);
    layout->addWidget(previewFrame);
    layout->addStretch(1);

    connect(texBrowse_, &QPushButton::clicked, this, &TexturesTab::texBrowse_Click);
    connect(texAlphaBrowse_, &QPushButton::clicked, this, &TexturesTab::texAlphaBrowse_Click);
    // A selection made by the program raises the event too; the catalogue
    // loader's flag absorbs the calls it causes.
    connect(texCategory_, &QComboBox::currentIndexChanged, this, &TexturesTab::texCategory_Click);
    connect(texSave_, &QPushButton::clicked, this, &TexturesTab::texSave_Click);
    connect(texReset_, &QPushButton::clicked, this, &TexturesTab::texReset_Click);
    connect(texBuild_, &QPushButton::clicked, this, &TexturesTab::texBuild_Click);
    connect(texTexture_, &QComboBox::currentIndexChanged, this, &TexturesTab::UpdatePreviews);
    connect(texInput_, &QLineEdit::textChanged, this, &TexturesTab::UpdatePreviews);
    connect(texAlpha_, &QLineEdit::textChanged, this, &TexturesTab::UpdatePreviews);
}

namespace {

// A picture fitted into a thumbnail, or a word when there is none.
void showThumbnail(QLabel* label, const QImage& image, const QString& otherwise) {
    if (image.isNull()) {
        label->setPixmap({});
        label->setText(otherwise);
        return;
    }
    label->setPixmap(QPixmap::fromImage(
        image.scaled(label->size() - QSize(4, 4), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
}

} // namespace

void TexturesTab::UpdatePreviews() {
    showThumbnail(texPicturePreview_,
                  texInput_->text().isEmpty() ? QImage() : DecodePicture(texInput_->text()),
                  QStringLiteral("none"));
    showThumbnail(texMaskPreview_,
                  texAlpha_->text().isEmpty() ? QImage() : DecodePicture(texAlpha_->text()),
                  QStringLiteral("none"));
    const CatalogueSelection& catalogue = host_.Catalogue().Selection();
    const int i = texTexture_->currentIndex();
    const QString file =
        i >= 0 && i < catalogue.Count()
            ? TextureGameFile(host_.GameFolder(), catalogue.paths[i], catalogue.files[i])
            : QString();
    if (file.isEmpty() || !QFileInfo(file).isFile()) {
        showThumbnail(texInstalledPreview_, {}, QStringLiteral("the game's own"));
        texInstalledText_->setText(i >= 0 ? QStringLiteral("not replaced") : QString());
        return;
    }
    const TexturePicture installed = ReadTextureFile(file);
    showThumbnail(texInstalledPreview_, installed.image, QStringLiteral("unreadable"));
    texInstalledText_->setText(installed.error.isEmpty() ? QStringLiteral("%1x%2, %3")
                                                               .arg(installed.image.width())
                                                               .arg(installed.image.height())
                                                               .arg(installed.format)
                                                         : installed.error);
}

void TexturesTab::reload(int category) {
    host_.Catalogue().LoadCatalogue(category, texCategory_, texTexture_);
}

bool TexturesTab::writeAll() const {
    // A greyed box counts as ticked: only "unchecked" means one texture.
    return texWriteAll_->checkState() != Qt::Unchecked;
}

void TexturesTab::SSTab1_Click(bool shown) {
    if (!shown) {
        tabOpen_ = false;
        return;
    }
    if (tabOpen_)
        return;
    tabOpen_ = true;
    reload(0);
    Q_EMIT CatalogueReloaded();
}

void TexturesTab::texBrowse_Click() {
    const QString chosen = BrowseImage(host_.Ui());
    if (chosen.isEmpty())
        return;
    texInput_->setText(chosen);
    texSave_->setEnabled(true);
}

void TexturesTab::texAlphaBrowse_Click() {
    const QString chosen = BrowseImage(host_.Ui());
    if (!chosen.isEmpty())
        texAlpha_->setText(chosen);
}

void TexturesTab::texCategory_Click() {
    const int category = texCategory_->currentIndex();
    if (category >= 0)
        reload(category);
}

CustomTexture TexturesTab::source() {
    SharedImages& images = host_.Images();
    return {texInput_->text(), texAlpha_->text(), &images.cDib, &images.cDibMask};
}

bool TexturesTab::WriteCustomTexture(int i) {
    const CatalogueSelection& catalogue = host_.Catalogue().Selection();
    if (i < 0 || i >= catalogue.Count())
        return true;
    // Copied: loading a picture runs the event loop, and nothing may change
    // the lists under the write.
    const CatalogueEntry entry = catalogue.Entry(i);
    return WriteCatalogueTexture(entry, source(), host_.TextureWriteContext(), host_.Busy(),
                                 host_.Ui());
}

void TexturesTab::texSave_Click() {
    // With no texture selected there is nothing to write.
    if (!writeAll()) {
        WriteCustomTexture(texTexture_->currentIndex());
        UpdatePreviews();
        return;
    }
    WriteCatalogueTextures(host_.Catalogue().Selection().Entries(), source(),
                           host_.TextureWriteContext(), host_.Busy(), host_.Ui());
    UpdatePreviews();
}

void TexturesTab::texReset_Click() {
    const CatalogueSelection& catalogue = host_.Catalogue().Selection();
    const QString gameFolder = host_.GameFolder();
    UiServices& ui = host_.Ui();
    if (!writeAll()) {
        const int i = texTexture_->currentIndex();
        if (i < 0 || i >= catalogue.Count())
            return;
        const QList<CatalogueEntry> one{catalogue.Entry(i)};
        if (!ReplacedTextures(gameFolder, one).isEmpty() &&
            ui.Message(RestoreOneQuestion(), MsgIcon::Question, MsgButtons::YesNo) ==
                MsgAnswer::Yes)
            RestoreCatalogueTextures(gameFolder, one, ui);
        UpdatePreviews();
        return;
    }
    if (ui.Message(RestoreAllQuestion(), MsgIcon::Question, MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    RestoreCatalogueTextures(gameFolder, catalogue.Entries(), ui);
    UpdatePreviews();
}

void TexturesTab::texBuild_Click() {
    const QString gameFolder = host_.GameFolder();
    if (gameFolder.isEmpty()) {
        host_.Ui().Message(NoGameFolderText(), MsgIcon::Exclamation);
        return;
    }
    const CatalogueBuildResult result = BuildCatalogueFromGame(gameFolder, host_.Busy());
    if (!result.message.isEmpty())
        host_.Ui().Message(result.message, MsgIcon::None);
    reload(0);
}
