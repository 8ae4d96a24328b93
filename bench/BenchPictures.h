#pragma once

#include "app/UiServices.h"

#include <QString>
#include <string>

// A 1920 x 1080 JPEG photo-like picture to load, made once per run in a
// temporary folder; KELVARIS_BENCH_JPEG names another one instead.
QString BenchJpeg();

// Asks for the ratio of two benchmarks' times (`name` over `base`, both
// real and CPU) to be printed at the end of the run, when both ran. Returns
// true, so it can initialise a namespace-scope constant.
bool CompareBenchmarks(const std::string& name, const std::string& base);

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
