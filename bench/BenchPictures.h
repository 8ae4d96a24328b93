#pragma once

#include "app/UiServices.h"

#include <QString>

// A 1920 x 1080 JPEG photo-like picture to load, made once per run in a
// temporary folder; KELVARIS_BENCH_JPEG names another one instead.
QString BenchJpeg();

// A temporary folder for the run's output.
QString BenchFolder();

// A desktop that answers every message with OK, every dialog with a cancel
// and starts programs without running them.
class SilentUi : public UiServices {
public:
    MsgAnswer Message(const QString&, MsgIcon, MsgButtons) override { return MsgAnswer::Ok; }
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart&) override { return true; }
};
