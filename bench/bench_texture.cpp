#include "BenchPictures.h"
#include "app/BusyHost.h"
#include "app/FileRecord.h"
#include "app/UiServices.h"
#include "image/LoadImage.h"
#include "image/PictureDecoder.h"
#include "image/cDIBSection.h"
#include "texture/ScreenTargets.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QImage>
#include <benchmark/benchmark.h>
#include <vector>

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

// One picture added to the randomizer's library, the unit of a folder add:
// the JPEG loaded and resampled to 1024 x 768, then written as a bare,
// uncompressed 1024 x 1024 DDS.
void BM_LibraryPicture(benchmark::State& state) {
    const TextureContext context = benchContext();
    const QString library = context.gameFolder + QStringLiteral("/Kelvaris/RandomHL/");
    HeadlessBusy busy;
    SilentUi ui;
    cDIBSection dib;
    for (auto _ : state) {
        if (!LoadImage(BenchJpeg(), dib, kScreenWidth, kScreenHeight, busy, ui) ||
            !WriteTexture(TextureRequest::LibraryEntry(library, QStringLiteral("picture.jpg"), dib),
                          context, busy, ui))
            state.SkipWithError("the library picture was not written");
    }
}
BENCHMARK(BM_LibraryPicture)->Unit(benchmark::kMillisecond);

// What a library picture cannot go below: the JPEG decoded, and a file of
// the entry's size (header and 1025 rows of 4096 bytes) written and made
// durable as every entry is.
void BM_LibraryPictureFloor(benchmark::State& state) {
    const QString file = BenchFolder() + QStringLiteral("/floor.dds");
    const std::vector<char> bytes(128 + 1025 * 4096, '\x40');
    for (auto _ : state) {
        benchmark::DoNotOptimize(DecodePicture(BenchJpeg()).constBits());
        FileRecord record = OpenReplacingFileRecord(file);
        WriteFileBytes(record, bytes.data(), qint64(bytes.size()));
        if (!CommitFileRecord(record))
            state.SkipWithError("the file was not written");
    }
}
BENCHMARK(BM_LibraryPictureFloor)->Unit(benchmark::kMillisecond);
[[maybe_unused]] const bool kComparedToFloor =
    CompareBenchmarks("BM_LibraryPicture", "BM_LibraryPictureFloor");

} // namespace
