// Converting sound files to Ogg Vorbis as "Save selected tracks" does.
//
//   bench_audio [benchmark options]       3-minute stereo 44.1 kHz tone, as
//                                         mp3 and as WAV
//   bench_audio --convert IN OUT          one conversion, for timing and peak
//                                         memory with /usr/bin/time -v
#include "app/BusyHost.h"
#include "audio/SoundConversion.h"
#include "audio/clsEncoderOGG.h"
#include "audio/clsWinampPlugin.h"

#include <QCoreApplication>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstring>

namespace {

constexpr int kSeconds = 180;

QTemporaryDir& folder() {
    static QTemporaryDir dir;
    return dir;
}

// A tone made by the `ffmpeg` program, once per run.
QString sourceFile(const char* name, const QStringList& codec) {
    const QString path = folder().path() + u'/' + QString::fromLatin1(name);
    if (QFile::exists(path))
        return path;
    QProcess ffmpeg;
    ffmpeg.start(
        QStringLiteral("ffmpeg"),
        QStringList{
            "-nostdin", "-v", "error", "-y", "-f", "lavfi", "-i",
            QStringLiteral("sine=frequency=440:sample_rate=44100:duration=%1").arg(kSeconds), "-ac",
            "2"} +
            codec + QStringList{path});
    ffmpeg.waitForFinished(-1);
    return ffmpeg.exitCode() == 0 ? path : QString();
}

bool convert(const QString& source, const QString& target) {
    clsWinampPlugin decoder;
    clsEncoderOGG encoder;
    HeadlessBusy busy;
    return decoder.Init(QString(), 0) > 0 && encoder.InitEncoder() &&
           ConvertSound(decoder, encoder, busy, source, target);
}

void convertBenchmark(benchmark::State& state, const QString& source) {
    if (source.isEmpty()) {
        state.SkipWithError("ffmpeg could not make the source");
        return;
    }
    const QString target = folder().path() + QStringLiteral("/converted.ogg");
    for (auto _ : state)
        if (!convert(source, target))
            state.SkipWithError("conversion failed");
    // Seconds of sound converted per second of running time.
    state.counters["realtime_x"] = benchmark::Counter(double(kSeconds) * double(state.iterations()),
                                                      benchmark::Counter::kIsRate);
}

void BM_ConvertSoundMp3(benchmark::State& state) {
    convertBenchmark(state, sourceFile("tone.mp3", {"-c:a", "libmp3lame", "-b:a", "192k"}));
}
BENCHMARK(BM_ConvertSoundMp3)->Unit(benchmark::kMillisecond)->Iterations(3);

void BM_ConvertSoundWav(benchmark::State& state) {
    convertBenchmark(state, sourceFile("tone.wav", {"-c:a", "pcm_s16le"}));
}
BENCHMARK(BM_ConvertSoundWav)->Unit(benchmark::kMillisecond)->Iterations(3);

} // namespace

int main(int argc, char** argv) {
    QCoreApplication app(argc, argv);
    if (argc == 4 && std::strcmp(argv[1], "--convert") == 0) {
        const bool ok = convert(QString::fromLocal8Bit(argv[2]), QString::fromLocal8Bit(argv[3]));
        if (!ok)
            std::fprintf(stderr, "conversion failed\n");
        return ok ? 0 : 1;
    }
    benchmark::Initialize(&argc, argv);
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
