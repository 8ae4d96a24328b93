#include "ConsoleUi.h"

#include <QCoreApplication>
#include <cstdio>
#include <unistd.h>

namespace {

void printError(const QString& text) {
    std::fputs(text.toLocal8Bit().constData(), stderr);
    std::fputc('\n', stderr);
}

} // namespace

MsgAnswer ConsoleUi::Message(const QString& Text, MsgIcon Icon, MsgButtons Buttons) {
    // A question answered by --yes needs no asking.
    if (Buttons == MsgButtons::YesNo && yes_)
        return MsgAnswer::Yes;
    QString text = Text;
    text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
    printError(text);
    if (Icon == MsgIcon::Exclamation || Icon == MsgIcon::Critical)
        ++problems_;
    return Buttons == MsgButtons::YesNo ? MsgAnswer::No : MsgAnswer::Ok;
}

bool ConsoleUi::StartProgram(const ProgramStart& start) {
    return StartDetached(start);
}

ConsoleBusy::ConsoleBusy() : terminal_(::isatty(STDERR_FILENO) == 1) {}

ConsoleBusy::~ConsoleBusy() {
    clearLine();
}

void ConsoleBusy::SetBusy(bool Busy, bool, long Maximum, const QString& Text) {
    busy_ = Busy;
    if (!Busy) {
        clearLine();
        return;
    }
    if (Maximum > 0)
        maximum_ = Maximum;
    text_ = Text;
    draw(0);
}

void ConsoleBusy::ShowProgress(long Value, const QString& Text) {
    if (!Text.isEmpty())
        text_ = Text;
    draw(Value);
    ProcessEventsNowAndThen();
}

void ConsoleBusy::draw(long value) {
    if (!terminal_ || text_.isEmpty())
        return;
    const long percent = maximum_ > 0 ? qBound(0L, value * 100 / maximum_, 100L) : 0;
    const QString line = QStringLiteral("\r%1 %2%").arg(text_.left(60)).arg(percent, 3);
    std::fputs(line.toLocal8Bit().constData(), stderr);
    std::fputs("\x1b[K", stderr);
    std::fflush(stderr);
    drawn_ = true;
}

void ConsoleBusy::clearLine() {
    if (!drawn_)
        return;
    std::fputs("\r\x1b[K", stderr);
    std::fflush(stderr);
    drawn_ = false;
}
