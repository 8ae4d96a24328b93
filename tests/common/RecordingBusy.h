#pragma once

#include "app/BusyHost.h"

#include <QCoreApplication>
#include <QList>
#include <QString>

// A window-less busy state that records every call, so a test can check the
// captions, ranges and positions an operation shows.
class RecordingBusy : public BusyHost {
public:
    struct Call {
        QString kind; // "busy", "idle", "progress", "maximum"
        long value = 0;
        QString text;
        bool operator==(const Call&) const = default;
    };

    void SetBusy(bool Busy, bool, long Maximum, const QString& Text) override {
        busy = Busy;
        calls.append({Busy ? QStringLiteral("busy") : QStringLiteral("idle"), Maximum, Text});
    }
    void ShowProgress(long Value, const QString& Text) override {
        calls.append({QStringLiteral("progress"), Value, Text});
        QCoreApplication::processEvents();
    }
    void SetProgressMaximum(long Maximum) override {
        calls.append({QStringLiteral("maximum"), Maximum, QString()});
    }
    bool CancelRequested() const override { return false; }
    bool IsBusy() const override { return busy; }
    bool RandomizerMode() const override { return false; }

    bool busy = false;
    QList<Call> calls;
};
