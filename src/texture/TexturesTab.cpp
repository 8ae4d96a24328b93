#include "TexturesTab.h"

#include "CatalogueBuilder.h"
#include "CatalogueLoader.h"
#include "FormTextureWrite.h"
#include "ScreensTabControls.h"
#include "app/Form1.h"
#include "app/UiServices.h"
#include "image/ImageOpenDialog.h"
#include "image/LoadImage.h"
#include "image/SharedImages.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QFileInfo>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

const char* const kRestoreOne = "This will REMOVE the custom image you have\r\n"
                                "placed in the selected Texture!\r\n\r\nAre you sure?";
const char* const kRestoreAll = "This will REMOVE the custom images you have\r\n"
                                "placed in the WHOLE Category!\r\n\r\nAre you sure?";

QString noGameFolderText() {
    return QStringLiteral("No game folder is set. Please choose it on the Settings tab first.");
}

QComboBox* makeList(const char* name, QWidget* parent) {
    auto* list = new QComboBox(parent);
    list->setObjectName(QString::fromLatin1(name));
    list->setSizeAdjustPolicy(QComboBox::AdjustToMinimumContentsLengthWithIcon);
    return list;
}

} // namespace

TexturesTab::TexturesTab(Form1& form, QWidget* parent) : QWidget(parent), form_(form) {
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

    auto* layout = new QVBoxLayout(this);
    layout->addWidget(sourceFrame);
    layout->addWidget(destinationFrame);
    layout->addStretch(1);

    connect(texBrowse_, &QPushButton::clicked, this, &TexturesTab::texBrowse_Click);
    connect(texAlphaBrowse_, &QPushButton::clicked, this, &TexturesTab::texAlphaBrowse_Click);
    // Like the design's list, a selection made by the program raises the
    // event too; the catalogue loader's flag absorbs the calls it causes.
    connect(texCategory_, &QComboBox::currentIndexChanged, this, &TexturesTab::texCategory_Click);
    connect(texSave_, &QPushButton::clicked, this, &TexturesTab::texSave_Click);
    connect(texReset_, &QPushButton::clicked, this, &TexturesTab::texReset_Click);
    connect(texBuild_, &QPushButton::clicked, this, &TexturesTab::texBuild_Click);
}

void TexturesTab::reload(int category) {
    form_.Catalogue().LoadCatalogue(category, texCategory_, texTexture_);
}

bool TexturesTab::writeAll() const {
    // A greyed box counts as ticked: only "unchecked" means one texture.
    return texWriteAll_->checkState() != Qt::Unchecked;
}

void TexturesTab::SSTab1_Click(int index) {
    if (index != kTabIndex) {
        tabOpen_ = false;
        return;
    }
    if (tabOpen_)
        return;
    tabOpen_ = true;
    reload(0);
    // The Online tab's chooser shares the catalogue's arrays, which now
    // describe another category: it goes back to its slot list.
    if (auto* chooser = form_.findChild<QWidget*>(QStringLiteral("webTexFrame")))
        chooser->hide();
    if (auto* slots = form_.findChild<QWidget*>(QStringLiteral("webFileFrame")))
        slots->show();
}

void TexturesTab::texBrowse_Click() {
    const QString chosen = BrowseImage(form_.Ui());
    if (chosen.isEmpty())
        return;
    texInput_->setText(chosen);
    texSave_->setEnabled(true);
}

void TexturesTab::texAlphaBrowse_Click() {
    const QString chosen = BrowseImage(form_.Ui());
    if (!chosen.isEmpty())
        texAlpha_->setText(chosen);
}

void TexturesTab::texCategory_Click() {
    const int category = texCategory_->currentIndex();
    if (category >= 0)
        reload(category);
}

bool TexturesTab::WriteCustomTexture(int i) {
    const CatalogueSelection& catalogue = form_.Catalogue().Selection();
    if (i < 0 || i >= catalogue.Count())
        return true;
    UiServices& ui = form_.Ui();
    const QString gameFolder = form_.GameFolder();
    if (gameFolder.isEmpty()) {
        ui.Message(noGameFolderText(), MsgIcon::Exclamation);
        return false;
    }
    // Copied: loading a picture runs the event loop, and nothing may change
    // the arrays under the write.
    const QString name = catalogue.names[i];
    const int width = catalogue.widths[i];
    const int height = catalogue.heights[i];
    const QString folder = catalogue.paths[i];
    const QString file = catalogue.files[i];
    const QString SavePath = TextureSaveFolder(gameFolder, folder);
    if (SavePath.isEmpty() || !IsSafeCatalogueEntry(folder, file)) {
        ui.Message(QStringLiteral("The texture \"%1\" was not written: the catalogue places it "
                                  "outside the game's data folder.")
                       .arg(name),
                   MsgIcon::Exclamation);
        return true;
    }

    const bool useMask = !texAlpha_->text().isEmpty();
    SharedImages& images = form_.Images();
    if (!LoadImage(texInput_->text(), images.cDib, width, height, form_, ui))
        return false;
    if (useMask && !LoadImage(texAlpha_->text(), images.cDibMask, width, height, form_, ui))
        return false;
    if (!WriteFormTexture(form_, SavePath, file, file, images.cDib, width, height, true, width,
                          height, folder + u'/', useMask, &images.cDibMask, false))
        ui.Message(WriteErrorText(), MsgIcon::Exclamation);
    return true;
}

void TexturesTab::texSave_Click() {
    // With no texture selected there is nothing to write.
    if (!writeAll()) {
        WriteCustomTexture(texTexture_->currentIndex());
        return;
    }
    // Sizes differ between textures, so the picture is loaded again for each.
    for (int i = 0; i < texTexture_->count(); ++i)
        if (!WriteCustomTexture(i))
            break;
}

void TexturesTab::texReset_Click() {
    const CatalogueSelection& catalogue = form_.Catalogue().Selection();
    const QString gameFolder = form_.GameFolder();
    auto gameFile = [&](int i) {
        if (i < 0 || i >= catalogue.Count())
            return QString();
        return TextureGameFile(gameFolder, catalogue.paths[i], catalogue.files[i]);
    };
    auto exists = [](const QString& path) { return !path.isEmpty() && QFileInfo(path).isFile(); };
    auto remove = [this](const QString& path) {
        if (!QFile::remove(path))
            form_.Ui().Message(QStringLiteral("\"%1\" could not be deleted. Please check file "
                                              "permissions.")
                                   .arg(path),
                               MsgIcon::Exclamation);
    };

    if (!writeAll()) {
        const QString path = gameFile(texTexture_->currentIndex());
        if (exists(path) && form_.Ui().Message(QString::fromLatin1(kRestoreOne), MsgIcon::Question,
                                               MsgButtons::YesNo) == MsgAnswer::Yes)
            remove(path);
        return;
    }
    if (form_.Ui().Message(QString::fromLatin1(kRestoreAll), MsgIcon::Question,
                           MsgButtons::YesNo) != MsgAnswer::Yes)
        return;
    for (int i = 0; i < texTexture_->count(); ++i) {
        const QString path = gameFile(i);
        if (exists(path))
            remove(path);
    }
}

void TexturesTab::texBuild_Click() {
    const QString gameFolder = form_.GameFolder();
    if (gameFolder.isEmpty()) {
        form_.Ui().Message(noGameFolderText(), MsgIcon::Exclamation);
        return;
    }
    const CatalogueBuildResult result = BuildCatalogueFromGame(gameFolder, form_);
    if (!result.message.isEmpty())
        form_.Ui().Message(result.message, MsgIcon::None);
    reload(0);
}
