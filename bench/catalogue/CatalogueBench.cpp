// Building the texture catalogue from a game of four archives holding 20,000
// interface textures in all (the size of a full installation's interface).
// Target: under 2 seconds and under 64 MB.

#include "app/BusyHost.h"
#include "catalogue/TestArchive.h"
#include "texture/CatalogueBuilder.h"
#include "texture/CatalogueLocation.h"
#include "texture/CatalogueReader.h"
#include "texture/GameArchive.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr int kArchives = 4;
constexpr int kTexturesPerArchive = 5000;
constexpr int kFolders = 60;

void writeArchives(const QString& folder) {
    const char* names[kArchives] = {"texture_gui", "texture_library", "texture_characters",
                                    "texture_world"};
    for (int a = 0; a < kArchives; ++a) {
        QList<TestArchiveEntry> entries;
        for (int t = 0; t < kTexturesPerArchive; ++t) {
            const int n = a * kTexturesPerArchive + t;
            entries.append({QStringLiteral("texture_library/GUI/Folder%1/Texture_%2.texture")
                                .arg(n % kFolders)
                                .arg(n),
                            MakeTestTexture(64 << (n % 5), 64 << (n % 4), n % 10 != 0, 4096),
                            n % 3 != 0});
        }
        QFile file(folder + QStringLiteral("/piggs/") + QLatin1String(names[a]) +
                   QStringLiteral(".pigg"));
        if (file.open(QIODevice::WriteOnly))
            file.write(MakeTestArchive(entries));
    }
}

// Writes the game once per process; every benchmark reads the same files.
// The archives are made in a child process, so the peak memory reported is
// the catalogue code's alone.
const QString& gameFolder() {
    static QTemporaryDir dir;
    static const QString game = [] {
        const QString folder = dir.path() + QStringLiteral("/CoH");
        QDir().mkpath(folder + QStringLiteral("/piggs"));
        qputenv("XDG_CONFIG_HOME", (dir.path() + QStringLiteral("/config")).toUtf8());
        const pid_t child = fork();
        if (child == 0) {
            writeArchives(folder);
            _exit(0);
        }
        int status = 0;
        waitpid(child, &status, 0);
        return folder;
    }();
    return game;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

void BM_BuildCatalogueFromGame(benchmark::State& state) {
    const QString& game = gameFolder();
    // The process's own peak before the first build (Qt and the benchmark).
    state.counters["before_MB"] = peakMegabytes();
    for (auto _ : state) {
        HeadlessBusy host;
        const CatalogueBuildResult result = BuildCatalogueFromGame(game, host);
        if (!result.written)
            state.SkipWithError(result.message.toUtf8().constData());
        benchmark::DoNotOptimize(result);
    }
    state.counters["categories"] = double(ReadCatalogue(UserCatalogueFile()).categories.size());
    state.counters["peak_MB"] = peakMegabytes();
}
BENCHMARK(BM_BuildCatalogueFromGame)->Unit(benchmark::kMillisecond);

void BM_ReadArchiveDirectory(benchmark::State& state) {
    QFile file(gameFolder() + QStringLiteral("/piggs/texture_gui.pigg"));
    file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadArchiveDirectory(file));
}
BENCHMARK(BM_ReadArchiveDirectory)->Unit(benchmark::kMillisecond);

void BM_ReadCatalogueSelection(benchmark::State& state) {
    const QString file = UserCatalogueFile();
    if (!QFile::exists(file)) {
        HeadlessBusy host;
        BuildCatalogueFromGame(gameFolder(), host);
    }
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadCatalogueSelection(file, kFolders / 2));
}
BENCHMARK(BM_ReadCatalogueSelection)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
