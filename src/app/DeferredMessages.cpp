#include "DeferredMessages.h"

MsgAnswer DeferredMessages::Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) {
    waiting_.append({Text, Icon});
    return Buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Ok;
}

void DeferredMessages::ShowWaitingMessages() {
    const QList<Waiting> waiting = std::exchange(waiting_, {});
    for (const Waiting& message : waiting)
        desktop_.Message(message.text, message.icon, MsgButtons::Ok);
}
