#include "CatalogueLoader.h"

#include "app/UiServices.h"
#include "texture/CatalogueLocation.h"

#include <QComboBox>

void CatalogueLoader::LoadCatalogue(int k, QComboBox* categoryList, QComboBox* textureList) {
    if (loading_)
        return;
    loading_ = true;

    categoryList->clear();
    textureList->clear();
    selection_ = ReadCatalogueSelection(CatalogueFile(), k);
    categoryList->addItems(selection_.categories);
    for (int i = 0; i < selection_.Count(); ++i)
        textureList->addItem(selection_.ListLine(i));
    categoryList->setCurrentIndex(k < categoryList->count() ? k : -1);
    textureList->setCurrentIndex(textureList->count() > 0 ? 0 : -1);

    // Told while the flag is still set: the message box runs the event loop.
    if (selection_.error != toldProblem_) {
        toldProblem_ = selection_.error;
        if (!toldProblem_.isEmpty())
            ui_.Message(toldProblem_ + QStringLiteral("\nThe button \"") + BuildCatalogueCaption() +
                            QStringLiteral("\" on the Textures tab makes a new catalogue from the "
                                           "game's own archives."),
                        MsgIcon::Exclamation);
    }
    loading_ = false;
}

QString BuildCatalogueCaption() {
    return QStringLiteral("Build catalogue from game");
}
