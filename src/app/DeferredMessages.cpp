#include "DeferredMessages.h"

MsgAnswer DeferredMessages::Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) {
    waiting_.append({Text, Icon});
    return Buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Ok;
}
