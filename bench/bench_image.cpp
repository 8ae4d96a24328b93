#include "BenchPictures.h"
#include "app/BusyHost.h"
#include "app/UiServices.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"

#include <benchmark/benchmark.h>

namespace {

class SilentUi : public UiServices {
public:
    MsgAnswer Message(const QString&, MsgIcon, MsgButtons) override { return MsgAnswer::Ok; }
    QString OpenFile(const FileDialogRequest&) override { return {}; }
    QString SaveFile(const FileDialogRequest&) override { return {}; }
    bool StartProgram(const ProgramStart&) override { return false; }
};

// The common case: a full-HD picture to the login screen's 1024 x 768.
void BM_Resample(benchmark::State& state) {
    cDIBSection source;
    source.CreateFromPicture(DecodePicture(BenchJpeg()));
    for (auto _ : state) {
        auto resampled = source.Resample(768, 1024);
        benchmark::DoNotOptimize(resampled->DIBSectionBitsPtr());
    }
}
BENCHMARK(BM_Resample)->Unit(benchmark::kMillisecond);

// Decoding alone.
void BM_DecodeJpeg(benchmark::State& state) {
    const QString path = BenchJpeg();
    for (auto _ : state)
        benchmark::DoNotOptimize(DecodePicture(path).constBits());
}
BENCHMARK(BM_DecodeJpeg)->Unit(benchmark::kMillisecond);

// The whole load: decode, take over and resample to 1024 x 768.
void BM_LoadImage(benchmark::State& state) {
    const QString path = BenchJpeg();
    HeadlessBusy busy;
    SilentUi ui;
    cDIBSection dib;
    for (auto _ : state) {
        if (!LoadImage(path, dib, 1024, 768, busy, ui))
            state.SkipWithError("the picture did not load");
    }
}
BENCHMARK(BM_LoadImage)->Unit(benchmark::kMillisecond);

} // namespace
