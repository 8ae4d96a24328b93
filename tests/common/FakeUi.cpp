#include "FakeUi.h"

MsgAnswer FakeUi::Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) {
    messages.append({Text, Icon, Buttons});
    if (!answers.empty()) {
        const MsgAnswer answer = answers.front();
        answers.pop_front();
        return answer;
    }
    return Buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Ok;
}

QString FakeUi::OpenFile(const FileDialogRequest& request) {
    openRequests.append(request);
    if (openAnswers.empty())
        return {};
    const QString answer = openAnswers.front();
    openAnswers.pop_front();
    return answer;
}

QString FakeUi::SaveFile(const FileDialogRequest& request) {
    saveRequests.append(request);
    if (saveAnswers.empty())
        return {};
    const QString answer = saveAnswers.front();
    saveAnswers.pop_front();
    return answer;
}

bool FakeUi::StartProgram(const ProgramStart& start) {
    starts.append(start);
    return true;
}

QStringList FakeUi::messageTexts() const {
    QStringList texts;
    for (const ShownMessage& m : messages)
        texts << m.text;
    return texts;
}
