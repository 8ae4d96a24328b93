#pragma once

#include "app/UiServices.h"

#include <QList>
#include <QStringList>
#include <deque>

// A scripted desktop: records every message and program start; answers from
// queues the test fills ("OK", "No" or a cancelled dialog when empty). Saving
// is always cancelled.
class FakeUi : public UiServices {
public:
    struct ShownMessage {
        QString text;
        MsgIcon icon;
        MsgButtons buttons;
    };

    MsgAnswer Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) override;
    QString OpenFile(const FileDialogRequest& request) override;
    QString SaveFile(const FileDialogRequest& request) override;
    bool StartProgram(const ProgramStart& start) override;

    QList<ShownMessage> messages;
    QList<ProgramStart> starts;

    std::deque<MsgAnswer> answers;
    std::deque<QString> openAnswers;

    QStringList messageTexts() const;
};
