#pragma once

#include <QString>
#include <functional>

// What a long operation needs from the window: the shared busy state, the
// progress display, the player's cancel request and the start mode. The core
// receives it by reference and never reaches for the window itself.
class BusyHost {
public:
    virtual ~BusyHost() = default;

    // Enters (Busy true) or leaves the busy state. While busy, the tabs are
    // locked and the Quit button reads "Cancel"; a Maximum of 0 keeps the
    // progress bar's current range.
    virtual void SetBusy(bool Busy, bool Cancellable, long Maximum, const QString& Text) = 0;

    // Moves the progress bar (a non-empty Text replaces its caption) and lets
    // pending window events run, which is how a Cancel click is seen.
    virtual void ShowProgress(long Value, const QString& Text) = 0;

    // Sets the progress bar's range directly, without entering the busy state.
    virtual void SetProgressMaximum(long Maximum) = 0;

    virtual bool CancelRequested() const = 0;
    virtual bool IsBusy() const = 0;
    virtual bool RandomizerMode() const = 0;
};

// Enters the busy state for the length of a scope and leaves it on every way
// out, so an early return can never leave the window locked.
class BusyScope {
public:
    BusyScope(BusyHost& host, bool Cancellable, long Maximum, const QString& Text) : host_(host) {
        host_.SetBusy(true, Cancellable, Maximum, Text);
    }
    ~BusyScope() { host_.SetBusy(false, false, 0, QString()); }
    BusyScope(const BusyScope&) = delete;
    BusyScope& operator=(const BusyScope&) = delete;

private:
    BusyHost& host_;
};

// Lets pending events run from a long operation's progress reports, at
// most every few milliseconds: often enough for a window to stay live and a
// Cancel to be seen at once, seldom enough to cost nothing beside the work
// (a picture reports each of its thousand rows). Main thread only.
void ProcessEventsNowAndThen();

// A BusyHost with no window: keeps the flags and lets pending events run on
// its progress reports. Used by the randomizer run before any window shows,
// by command-line tools and by tests.
class HeadlessBusy : public BusyHost {
public:
    explicit HeadlessBusy(bool randomizerMode = false) : randomizer_(randomizerMode) {}

    void SetBusy(bool Busy, bool, long, const QString&) override { busy_ = Busy; }
    void ShowProgress(long Value, const QString&) override;
    void SetProgressMaximum(long) override {}
    bool CancelRequested() const override { return cancel_; }
    bool IsBusy() const override { return busy_; }
    bool RandomizerMode() const override { return randomizer_; }

    // Tests use these to act as the player would.
    void RequestCancel() { cancel_ = true; }
    // Called with each progress value; lets a test cancel at a chosen point.
    std::function<void(long)> onProgress;

private:
    bool busy_ = false;
    bool cancel_ = false;
    bool randomizer_ = false;
};
