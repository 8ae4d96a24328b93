#pragma once

#include "app/BusyHost.h"
#include "app/UiServices.h"

// The command line's side of the desktop: messages on standard error (the
// texts the window shows in its boxes), questions answered by --yes, no
// dialogs, and progress on standard error when it is a terminal.

class ConsoleUi : public UiServices {
public:
    explicit ConsoleUi(bool yes) : yes_(yes) {}

    MsgAnswer Message(const QString& Text, MsgIcon Icon,
                      MsgButtons Buttons = MsgButtons::Ok) override;
    // The command line names its files; it never asks with a dialog.
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart& start) override;

    // Messages shown so far with a warning or error icon.
    int Problems() const { return problems_; }

private:
    bool yes_;
    int problems_ = 0;
};

class ConsoleBusy : public BusyHost {
public:
    ConsoleBusy();
    ~ConsoleBusy() override;

    void SetBusy(bool Busy, bool Cancellable, long Maximum, const QString& Text) override;
    void ShowProgress(long Value, const QString& Text) override;
    void SetProgressMaximum(long Maximum) override { maximum_ = Maximum; }
    bool CancelRequested() const override { return false; }
    bool IsBusy() const override { return busy_; }
    bool RandomizerMode() const override { return false; }

private:
    void draw(long value);
    void clearLine();

    bool terminal_;
    bool busy_ = false;
    bool drawn_ = false;
    long maximum_ = 0;
    QString text_;
};
