#include "BenchPictures.h"
#include "app/BusyHost.h"
#include "app/UiServices.h"
#include "image/LoadImage.h"
#include "image/cDIBSection.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <benchmark/benchmark.h>

namespace {

TextureContext benchContext() {
    TextureContext context;
    context.gameFolder = BenchFolder() + QStringLiteral("/game");
    context.workFolder = BenchFolder() + QStringLiteral("/work");
    QDir().mkpath(context.gameFolder);
    QDir().mkpath(context.workFolder);
    return context;
}

bool writeLogin(const cDIBSection& dib, const TextureContext& context, BusyHost& busy,
                UiServices& ui) {
    return WriteTexture(TextureRequest::Screen(kLoginScreen, context.gameFolder, dib), context,
                        busy, ui);
}

// Writing the login screen uncompressed: 4 MB of rows into the container.
void BM_WriteTextureLoginScreen(benchmark::State& state) {
    const TextureContext context = benchContext();
    HeadlessBusy busy;
    SilentUi ui;
    cDIBSection dib;
    LoadImage(BenchJpeg(), dib, kScreenWidth, kScreenHeight, busy, ui);
    for (auto _ : state) {
        if (!writeLogin(dib, context, busy, ui))
            state.SkipWithError("the texture was not written");
    }
}
BENCHMARK(BM_WriteTextureLoginScreen)->Unit(benchmark::kMillisecond);

// What the player waits for on "Save as login screen" after choosing a
// picture: the JPEG loaded, resampled and written (target: under 40 ms).
void BM_LoadAndWriteLoginScreen(benchmark::State& state) {
    const TextureContext context = benchContext();
    HeadlessBusy busy;
    SilentUi ui;
    for (auto _ : state) {
        cDIBSection dib;
        if (!LoadImage(BenchJpeg(), dib, kScreenWidth, kScreenHeight, busy, ui) ||
            !writeLogin(dib, context, busy, ui))
            state.SkipWithError("the login screen was not made");
    }
}
BENCHMARK(BM_LoadAndWriteLoginScreen)->Unit(benchmark::kMillisecond);

} // namespace
