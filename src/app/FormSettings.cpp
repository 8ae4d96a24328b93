#include "FormSettings.h"

#include "ControlTag.h"
#include "NumberText.h"
#include "modRegistry.h"

#include <QAbstractButton>
#include <QLineEdit>
#include <QWidget>

namespace {

ControlSetting text(const char* value, const char* control) {
    return {QString::fromLatin1(value), QString::fromLatin1(control), ControlSetting::Text};
}
ControlSetting check(const char* value, const char* control) {
    return {QString::fromLatin1(value), QString::fromLatin1(control), ControlSetting::Check};
}

} // namespace

ControlSetting OnlineNameSetting(int n) {
    return {QStringLiteral("webName") + QString::number(n),
            QStringLiteral("webFile_") + QString::number(n), ControlSetting::Text};
}

ControlSetting OnlineLinkSetting(int n) {
    return {QStringLiteral("webLink") + QString::number(n),
            QStringLiteral("webURL_") + QString::number(n), ControlSetting::Text};
}

const QList<ControlSetting>& SettingsSavedAtClose() {
    static const QList<ControlSetting> table = [] {
        QList<ControlSetting> t = {
            check("CohAuto", "setAuto"),
            {QStringLiteral("CohRegKey"), QStringLiteral("setCohRegKey"), ControlSetting::Tag},
            text("CohPath", "setCohPath"),
            text("CohWidth", "setWidth"),
            text("CohHeight", "setHeight"),
            check("RandomFolder", "rndFolder"),
            check("SoundFolder", "sndFolder"),
            check("Frames", "scrFrames"),
            check("FramesPreview", "scrFramesPreview"),
            text("FrameHL", "FrameHL"),
            text("FrameHC", "FrameHC"),
            check("TextureCompression", "setCompression"),
        };
        for (int n = 0; n < kOnlineSlots; ++n)
            t << OnlineLinkSetting(n);
        return t;
    }();
    return table;
}

const QList<ControlSetting>& SettingsLoadedAtStart() {
    static const QList<ControlSetting> table = {
        {QStringLiteral("CohRegKey"), QStringLiteral("setCohRegKey"), ControlSetting::Tag},
        text("CohWidth", "setWidth"),
        text("CohHeight", "setHeight"),
        check("Frames", "scrFrames"),
        check("FramesPreview", "scrFramesPreview"),
        check("TextureCompression", "setCompression"),
        check("CohAuto", "setAuto"),
        text("FrameHL", "FrameHL"),
        text("FrameHC", "FrameHC"),
        check("RandomFolder", "rndFolder"),
        check("SoundFolder", "sndFolder"),
    };
    return table;
}

void LoadControlSetting(QWidget& window, const ControlSetting& setting) {
    QWidget* control = window.findChild<QWidget*>(setting.controlName);
    if (!control)
        return;
    const QString value = modRegistry::QueryValue(kSettingsKey, setting.valueName);
    switch (setting.kind) {
    case ControlSetting::Text:
        if (auto* box = qobject_cast<QLineEdit*>(control))
            box->setText(value);
        break;
    case ControlSetting::Check:
        if (auto* box = qobject_cast<QAbstractButton*>(control))
            box->setChecked(CheckedFromText(value));
        break;
    case ControlSetting::Tag:
        SetTag(control, value);
        break;
    }
}

void SaveControlSetting(QWidget& window, const ControlSetting& setting) {
    QWidget* control = window.findChild<QWidget*>(setting.controlName);
    if (!control)
        return;
    QString value;
    switch (setting.kind) {
    case ControlSetting::Text:
        if (auto* box = qobject_cast<QLineEdit*>(control))
            value = box->text();
        break;
    case ControlSetting::Check:
        if (auto* box = qobject_cast<QAbstractButton*>(control))
            value = box->isChecked() ? QStringLiteral("1") : QStringLiteral("0");
        break;
    case ControlSetting::Tag:
        value = Tag(control);
        break;
    }
    modRegistry::SetValue(kSettingsKey, setting.valueName, value);
}
