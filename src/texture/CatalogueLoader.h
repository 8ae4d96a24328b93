#pragma once

#include "texture/CatalogueReader.h"

#include <QString>

class QComboBox;

// The caption of the Textures tab's button that builds the catalogue from the
// game's archives; the loader's messages point the player to it.
QString BuildCatalogueCaption();
class UiServices;

// Fills a category list and a texture list from the texture catalogue and
// keeps the textures of the category last loaded. The window owns one, shared
// by the Textures and Online tabs: loading a category on either tab replaces
// what the other sees, as both choose from the same five arrays.
class CatalogueLoader {
public:
    explicit CatalogueLoader(UiServices& ui) : ui_(ui) {}

    // Reads the whole catalogue, lists every category in categoryList and the
    // textures of category k in textureList, and selects entry k and the
    // first texture. Setting a list's selection calls back in through the
    // list's selection signal; the loading flag turns that call into nothing.
    // A catalogue that is missing or damaged is told once (the same problem
    // is not told again on every click); what could be read stays usable.
    void LoadCatalogue(int k, QComboBox* categoryList, QComboBox* textureList);

    // The textures of the category last loaded, as five parallel arrays.
    const CatalogueSelection& Selection() const { return selection_; }
    bool Loading() const { return loading_; }

private:
    UiServices& ui_;
    CatalogueSelection selection_;
    bool loading_ = false;
    QString toldProblem_;
};
