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

QString FakeUi::OpenFile(const FileDialogRequest&) {
    if (openAnswers.empty())
        return {};
    const QString answer = openAnswers.front();
    openAnswers.pop_front();
    return answer;
}

QString FakeUi::SaveFile(const FileDialogRequest&) {
    return {};
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
