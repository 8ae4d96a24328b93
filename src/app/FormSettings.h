#pragma once

#include <QList>
#include <QString>

class QWidget;

// The settings that live in the window's controls: read once at start-up,
// written back once at close. Each names the stored value and the control
// (by object name) that holds it while Kelvaris runs.
struct ControlSetting {
    enum Kind { Text, Check, Tag };
    QString valueName;
    QString controlName;
    Kind kind;
};

// Reads the value into the control. A check box set this way runs its
// reactions as a player's click would. A control that is not on the window
// is passed over.
void LoadControlSetting(QWidget& window, const ControlSetting& setting);

// Writes the control's state (text, "0"/"1", or Tag) as the value. A control
// that is not on the window leaves its stored value alone.
void SaveControlSetting(QWidget& window, const ControlSetting& setting);

// The settings saved at close, in the order they are written.
const QList<ControlSetting>& SettingsSavedAtClose();

// The settings read at start-up in the interactive mode, in their order.
const QList<ControlSetting>& SettingsLoadedAtStart();

// The online slot n's controls: its texture name box and its address box.
ControlSetting OnlineNameSetting(int n);
ControlSetting OnlineLinkSetting(int n);
constexpr int kOnlineSlots = 5;
