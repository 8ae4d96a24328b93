#include "BenchPictures.h"
#include "app/BusyHost.h"
#include "app/UiServices.h"
#include "image/FrameOverlay.h"
#include "image/LevelAdjust.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"

#include <QImage>
#include <benchmark/benchmark.h>

namespace {

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

// The same from the decoded picture's own rows, as a load does it.
void BM_ResampleDecoded(benchmark::State& state) {
    const QImage picture = DecodePicture(BenchJpeg());
    for (auto _ : state) {
        cDIBSection resampled;
        resampled.CreateResampled(picture, 768, 1024);
        benchmark::DoNotOptimize(resampled.DIBSectionBitsPtr());
    }
}
BENCHMARK(BM_ResampleDecoded)->Unit(benchmark::kMillisecond);

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

// Levels applied to the full screen picture ("Apply").
void BM_AdjustLevels(benchmark::State& state) {
    cDIBSection source;
    source.CreateFromPicture(DecodePicture(BenchJpeg()));
    const cDIBSection screen = *source.Resample(768, 1024);
    for (auto _ : state) {
        state.PauseTiming();
        cDIBSection work = screen;
        state.ResumeTiming();
        AdjustLevels(work, 10, 240);
        benchmark::DoNotOptimize(work.DIBSectionBitsPtr());
    }
}
BENCHMARK(BM_AdjustLevels)->Unit(benchmark::kMillisecond);

// A frame with a large hole laid over the screen picture, as before each
// framed save (the frame file already decoded).
void BM_OverlayFrame(benchmark::State& state) {
    cDIBSection source;
    source.CreateFromPicture(DecodePicture(BenchJpeg()));
    const cDIBSection screen = *source.Resample(768, 1024);
    QImage frameImage(1024, 768, QImage::Format_RGB32);
    frameImage.fill(qRgb(40, 30, 20));
    for (int y = 60; y < 708; ++y)
        for (int x = 80; x < 944; ++x)
            frameImage.setPixel(x, y, qRgb(255, 0, 255));
    cDIBSection frame;
    frame.CreateFromPicture(frameImage);
    for (auto _ : state) {
        state.PauseTiming();
        cDIBSection work = frame;
        state.ResumeTiming();
        OverlayFrame(work, screen);
        benchmark::DoNotOptimize(work.DIBSectionBitsPtr());
    }
}
BENCHMARK(BM_OverlayFrame)->Unit(benchmark::kMillisecond);

// ApplyFrame as the save does it: the frame PNG decoded, then laid over.
void BM_ApplyFrame(benchmark::State& state) {
    QImage frameImage(1024, 768, QImage::Format_RGB32);
    frameImage.fill(qRgb(40, 30, 20));
    for (int y = 60; y < 708; ++y)
        for (int x = 80; x < 944; ++x)
            frameImage.setPixel(x, y, qRgb(255, 0, 255));
    const QString framePath = BenchFolder() + QStringLiteral("/frame.png");
    frameImage.save(framePath, "PNG");
    cDIBSection source;
    source.CreateFromPicture(DecodePicture(BenchJpeg()));
    const auto screen = std::make_shared<cDIBSection>(*source.Resample(768, 1024));
    for (auto _ : state)
        benchmark::DoNotOptimize(ApplyFrame(framePath, screen).get());
}
BENCHMARK(BM_ApplyFrame)->Unit(benchmark::kMillisecond);

} // namespace
