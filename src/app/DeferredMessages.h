#pragma once

#include "UiServices.h"

#include <QList>

// A message told before the desktop could show it.
struct DeferredMessage {
    QString text;
    MsgIcon icon = MsgIcon::None;
};

// Stands in for the desktop while no application object exists yet (the
// randomizer run goes first, so the game starts as early as it can):
// messages wait to be shown on the real desktop once it is there; programs
// are started at once. Dialogs are never asked for then and answer "cancel".
class DeferredMessages : public UiServices {
public:
    MsgAnswer Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) override;
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart& start) override { return StartDetached(start); }

    bool HasWaitingMessages() const { return !waiting_.isEmpty(); }
    // The waiting messages, in the order they were told; none wait after.
    QList<DeferredMessage> TakeWaitingMessages() { return std::exchange(waiting_, {}); }

private:
    QList<DeferredMessage> waiting_;
};
