#pragma once

#include <QLineEdit>
#include <QPushButton>

// Controls of the texture tabs (Screens, Textures) carry their names (scrSaveHL,
// texInput, ...) as object names.

inline QPushButton* makeButton(const char* caption, const char* name, QWidget* parent) {
    auto* button = new QPushButton(QString::fromLatin1(caption), parent);
    button->setObjectName(QString::fromLatin1(name));
    return button;
}

inline QLineEdit* makeBox(const char* name, QWidget* parent) {
    auto* box = new QLineEdit(parent);
    box->setObjectName(QString::fromLatin1(name));
    return box;
}
