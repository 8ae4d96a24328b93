#pragma once

#include "app/UiServices.h"

#include <QList>
#include <QStringList>
#include <deque>

// A scripted desktop: records every message, dialog and program start; answers
// from queues the test fills ("OK", "No" or a cancelled dialog when empty).
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
    QList<FileDialogRequest> openRequests;
    QList<FileDialogRequest> saveRequests;
    QList<ProgramStart> starts;

    std::deque<MsgAnswer> answers;
    std::deque<QString> openAnswers;
    std::deque<QString> saveAnswers;

    QStringList messageTexts() const;
};
