#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

// The Tag of a control: a piece of text a control carries for the code (the
// game key name on "Game location:", the full path behind a file box, a
// BoomBox track number), kept as the control's "Tag" property.
inline QString Tag(const QObject* control) {
    return control->property("Tag").toString();
}

inline void SetTag(QObject* control, const QString& text) {
    control->setProperty("Tag", text);
}
