// Building the texture catalogue from a game of four archives holding 20,000
// interface textures in all (the size of a full installation's interface),
// and from games of a quarter and half that size, beside the floor: reading
// the same archives' bytes once from the page cache. Target: within five
// times the floor, the cost per texture flat, and under 64 MB.

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
#include <QThreadPool>
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int kArchives = 4;
constexpr int kFolders = 60;
// The full installation's count, and the smaller games that show the cost
// per texture stays flat.
constexpr int kFullGame = 20000;

void writeArchives(const QString& folder, int textures) {
    const char* names[kArchives] = {"texture_gui", "texture_library", "texture_characters",
                                    "texture_world"};
    const int perArchive = textures / kArchives;
    for (int a = 0; a < kArchives; ++a) {
        QList<TestArchiveEntry> entries;
        for (int t = 0; t < perArchive; ++t) {
            const int n = a * perArchive + t;
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

QTemporaryDir& benchDir() {
    static QTemporaryDir dir;
    static const bool configured = [] {
        qputenv("XDG_CONFIG_HOME", (dir.path() + QStringLiteral("/config")).toUtf8());
        return true;
    }();
    (void)configured;
    return dir;
}

// Writes a game of `textures` interface textures once per process; every
// benchmark reads the same files. The archives are made in a child process,
// so the peak memory reported is the catalogue code's alone.
QString gameFolder(int textures) {
    const QString folder = benchDir().path() + QStringLiteral("/CoH%1").arg(textures);
    if (QDir(folder + QStringLiteral("/piggs")).exists())
        return folder;
    QDir().mkpath(folder + QStringLiteral("/piggs"));
    const pid_t child = fork();
    if (child == 0) {
        writeArchives(folder, textures);
        _exit(0);
    }
    int status = 0;
    waitpid(child, &status, 0);
    return folder;
}

double peakMegabytes() {
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    return double(usage.ru_maxrss) / 1024.0;
}

// Reads every archive of the game once, a megabyte at a time; returns the
// bytes read.
qint64 readArchivesOnce(const QString& game) {
    static std::vector<char> buffer(1024 * 1024);
    qint64 total = 0;
    for (const QString& path : FindGameArchives(game)) {
        const int fd = ::open(QFile::encodeName(path).constData(), O_RDONLY | O_CLOEXEC);
        if (fd < 0)
            continue;
        ssize_t got = 0;
        while ((got = ::read(fd, buffer.data(), buffer.size())) > 0)
            total += got;
        ::close(fd);
    }
    return total;
}

void BM_BuildCatalogueFromGame(benchmark::State& state) {
    const int textures = int(state.range(0));
    const QString game = gameFolder(textures);
    readArchivesOnce(game); // into the page cache
    // The process's own peak before the first build (Qt and the benchmark).
    state.counters["before_MB"] = peakMegabytes();
    for (auto _ : state) {
        HeadlessBusy host;
        const CatalogueBuildResult result = BuildCatalogueFromGame(game, host);
        if (!result.written)
            state.SkipWithError(result.message.toUtf8().constData());
        benchmark::DoNotOptimize(result);
        // What a build leaves to be freed in the background is freed before
        // the next one starts, as it is long before a player's next build.
        state.PauseTiming();
        QThreadPool::globalInstance()->waitForDone();
        state.ResumeTiming();
    }
    state.SetComplexityN(textures);
    state.counters["us_per_texture"] =
        benchmark::Counter(double(textures), benchmark::Counter::kIsIterationInvariantRate |
                                                 benchmark::Counter::kInvert);
    state.counters["categories"] = double(ReadCatalogue(UserCatalogueFile()).categories.size());
    state.counters["peak_MB"] = peakMegabytes();
}
BENCHMARK(BM_BuildCatalogueFromGame)
    ->Arg(kFullGame / 4)
    ->Arg(kFullGame / 2)
    ->Arg(kFullGame)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime()
    ->Complexity(benchmark::oN);

// The floor for the build: the same archives' bytes read once from the page
// cache, with nothing done to them.
void BM_ReadArchivesFromCache(benchmark::State& state) {
    const QString game = gameFolder(int(state.range(0)));
    const qint64 bytes = readArchivesOnce(game);
    for (auto _ : state)
        benchmark::DoNotOptimize(readArchivesOnce(game));
    state.SetBytesProcessed(state.iterations() * bytes);
}
BENCHMARK(BM_ReadArchivesFromCache)
    ->Arg(kFullGame / 4)
    ->Arg(kFullGame / 2)
    ->Arg(kFullGame)
    ->Unit(benchmark::kMillisecond);

void BM_ReadArchiveDirectory(benchmark::State& state) {
    QFile file(gameFolder(kFullGame) + QStringLiteral("/piggs/texture_gui.pigg"));
    file.open(QIODevice::ReadOnly | QIODevice::Unbuffered);
    for (auto _ : state)
        benchmark::DoNotOptimize(ReadArchiveDirectory(file));
}
BENCHMARK(BM_ReadArchiveDirectory)->Unit(benchmark::kMillisecond);

void BM_ReadCatalogueSelection(benchmark::State& state) {
    const QString file = UserCatalogueFile();
    if (!QFile::exists(file)) {
        HeadlessBusy host;
        BuildCatalogueFromGame(gameFolder(kFullGame), host);
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
