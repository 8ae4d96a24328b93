#pragma once

#include "UiServices.h"

#include <QList>

// Stands in for the desktop while no application object exists yet (the
// randomizer run goes first, so the game starts as early as it can):
// messages wait to be shown on the real desktop once it is there; programs
// are started at once. Dialogs are never asked for then and answer "cancel".
class DeferredMessages : public UiServices {
public:
    explicit DeferredMessages(UiServices& desktop) : desktop_(desktop) {}

    MsgAnswer Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) override;
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart& start) override { return desktop_.StartProgram(start); }

    // Shows every waiting message on the desktop, in order.
    void ShowWaitingMessages();
    bool HasWaitingMessages() const { return !waiting_.isEmpty(); }

private:
    struct Waiting {
        QString text;
        MsgIcon icon;
    };
    UiServices& desktop_;
    QList<Waiting> waiting_;
};
