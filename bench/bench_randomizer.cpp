#include "BenchPictures.h"
#include "app/BusyHost.h"
#include "image/cDIBSection.h"
#include "randomizer/LibraryOperations.h"
#include "randomizer/RunRandomizer.h"
#include "texture/TextureWriter.h"

#include <QDir>
#include <QFile>
#include <benchmark/benchmark.h>
#include <memory>

namespace {

constexpr int kFolderPictures = 100;
constexpr int kLibraryEntries = 1000;

// A folder of 100 copies of the 1920 x 1080 JPEG, made once.
QString pictureFolder() {
    const QString folder = BenchFolder() + QStringLiteral("/pictures");
    if (!QDir(folder).exists()) {
        QDir().mkpath(folder);
        for (int i = 0; i < kFolderPictures; ++i)
            QFile::copy(BenchJpeg(), folder + QStringLiteral("/photo %1.jpg").arg(i));
    }
    return folder;
}

// Adding a whole folder to the login library as the Randomizer tab does:
// each picture decoded, resampled to 1024 x 768 and written as an
// uncompressed 1024 x 1024 DDS. The argument is the number of threads
// preparing pictures: 1 for one picture after the other, 0 for one per core.
// Reported as images per second.
void BM_AddFolderToLibrary(benchmark::State& state) {
    const QString folder = pictureFolder();
    TextureContext context;
    context.gameFolder = BenchFolder() + QStringLiteral("/game");
    context.workFolder = BenchFolder() + QStringLiteral("/work");
    QDir().mkpath(context.workFolder);
    HeadlessBusy busy;
    SilentUi ui;
    LibraryAdd add;
    add.image = std::make_shared<cDIBSection>();
    add.workers = int(state.range(0));
    for (auto _ : state) {
        if (AddFolderToLibrary(add, folder, context, busy, ui) != kFolderPictures)
            state.SkipWithError("a library image was not written");
    }
    state.SetItemsProcessed(state.iterations() * kFolderPictures);
}
BENCHMARK(BM_AddFolderToLibrary)->Arg(1)->Arg(0)->Unit(benchmark::kMillisecond)->UseRealTime();
[[maybe_unused]] const bool kParallelCompared =
    CompareBenchmarks("BM_AddFolderToLibrary/1/real_time", "BM_AddFolderToLibrary/0/real_time");

// The randomizer run against a 1000-entry library: listing, the picks, the
// two 4 MB textures and the client start (recorded, not run).
void BM_RandomizerRun(benchmark::State& state) {
    const QString game = BenchFolder() + QStringLiteral("/randomized");
    const QString entry = BenchFolder() + QStringLiteral("/entry.dds");
    if (!QFile::exists(entry)) {
        QFile file(entry);
        if (file.open(QIODevice::WriteOnly))
            file.write(QByteArray(128 + 1025 * 4096, '\x40'));
    }
    for (const char* half : {"/Kelvaris/RandomHL/", "/Kelvaris/RandomHC/"}) {
        const QString library = game + QString::fromLatin1(half);
        QDir().mkpath(library);
        for (int i = 0; i < kLibraryEntries; ++i)
            QFile::link(entry, library + QStringLiteral("image %1.dds").arg(i));
    }
    QFile client(game + QStringLiteral("/paragonchat.exe"));
    if (client.open(QIODevice::WriteOnly))
        client.write("MZ");
    // A stand-in wine on the PATH: the run only has to find it.
    const QString bin = BenchFolder() + QStringLiteral("/bin");
    QDir().mkpath(bin);
    QFile wine(bin + QStringLiteral("/wine"));
    if (wine.open(QIODevice::WriteOnly))
        wine.write("#!/bin/sh\n");
    wine.close();
    wine.setPermissions(QFile::ReadOwner | QFile::ExeOwner);
    qputenv("PATH", bin.toUtf8() + ':' + qgetenv("PATH"));
    qputenv("XDG_CONFIG_HOME", (BenchFolder() + QStringLiteral("/config")).toUtf8());

    const QString cwd = QDir::currentPath();
    SilentUi ui;
    for (auto _ : state)
        RunRandomizer(game, QStringList{"-randomizer", "-x", "1"}, ui);
    QDir::setCurrent(cwd);
}
BENCHMARK(BM_RandomizerRun)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
