#include "SoundFixtures.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <cmath>

namespace {

void put16(QByteArray& bytes, int value) {
    bytes.append(char(value & 0xff));
    bytes.append(char((value >> 8) & 0xff));
}
void put32(QByteArray& bytes, uint32_t value) {
    put16(bytes, int(value & 0xffff));
    put16(bytes, int(value >> 16));
}

} // namespace

QByteArray ToneWav(double seconds, int rate, int channels) {
    const int frames = int(std::lround(seconds * rate));
    const uint32_t dataBytes = uint32_t(frames) * uint32_t(channels) * 2;
    QByteArray wav;
    wav.reserve(int(dataBytes) + 44);
    wav.append("RIFF");
    put32(wav, 36 + dataBytes);
    wav.append("WAVEfmt ");
    put32(wav, 16);
    put16(wav, 1);
    put16(wav, channels);
    put32(wav, uint32_t(rate));
    put32(wav, uint32_t(rate * channels * 2));
    put16(wav, channels * 2);
    put16(wav, 16);
    wav.append("data");
    put32(wav, dataBytes);
    for (int i = 0; i < frames; ++i)
        for (int c = 0; c < channels; ++c) {
            const double hz = 440.0 * (c + 1);
            put16(wav, int(std::lround(12000 * std::sin(2 * M_PI * hz * i / rate))));
        }
    return wav;
}

bool RunFfmpeg(const QStringList& inputOptions, const QString& Input,
               const QStringList& outputOptions, const QString& Output) {
    QProcess ffmpeg;
    ffmpeg.start(QStringLiteral("ffmpeg"), QStringList{"-nostdin", "-v", "error", "-y"} +
                                               inputOptions + QStringList{"-i", Input} +
                                               outputOptions + QStringList{Output});
    return ffmpeg.waitForFinished(120000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

OggReport ReadOgg(const QString& path) {
    OggReport report;
    QProcess ogginfo;
    ogginfo.setProcessChannelMode(QProcess::MergedChannels);
    ogginfo.start(QStringLiteral("ogginfo"), {path});
    if (!ogginfo.waitForFinished(60000))
        return report;
    report.text = QString::fromUtf8(ogginfo.readAll());
    report.valid = ogginfo.exitCode() == 0 && !report.text.contains(QStringLiteral("WARNING")) &&
                   !report.text.contains(QStringLiteral("ERROR"));
    const auto rate = QRegularExpression(QStringLiteral("Rate: (\\d+)")).match(report.text);
    const auto channels = QRegularExpression(QStringLiteral("Channels: (\\d+)")).match(report.text);
    const auto length = QRegularExpression(QStringLiteral("Playback length: (\\d+)m:([\\d.]+)s"))
                            .match(report.text);
    if (rate.hasMatch())
        report.rate = rate.captured(1).toInt();
    if (channels.hasMatch())
        report.channels = channels.captured(1).toInt();
    if (length.hasMatch())
        report.seconds = length.captured(1).toInt() * 60 + length.captured(2).toDouble();
    return report;
}

QList<OggPage> ReadOggPages(const QString& path) {
    QFile file(path);
    QList<OggPage> pages;
    if (!file.open(QIODevice::ReadOnly))
        return pages;
    const QByteArray bytes = file.readAll();
    auto byteAt = [&bytes](qsizetype i) { return uint8_t(bytes[i]); };
    qsizetype at = 0;
    while (at + 27 <= bytes.size() && bytes.mid(at, 4) == "OggS") {
        OggPage page;
        page.headerType = byteAt(at + 5);
        for (int i = 7; i >= 0; --i)
            page.granule = (page.granule << 8) | byteAt(at + 6 + i);
        for (int i = 3; i >= 0; --i)
            page.serial = (page.serial << 8) | byteAt(at + 14 + i);
        const int segments = byteAt(at + 26);
        if (at + 27 + segments > bytes.size())
            break;
        qsizetype body = 0;
        for (int i = 0; i < segments; ++i) {
            const int lacing = byteAt(at + 27 + i);
            body += lacing;
            if (lacing < 255)
                ++page.packetsEnded;
        }
        pages << page;
        at += 27 + segments + body;
    }
    return pages;
}

namespace {

bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

SoundSet makeSounds() {
    static QTemporaryDir folder;
    SoundSet set;
    const QString base = folder.path() + u'/';
    set.wav = base + QStringLiteral("tone.wav");
    set.mp3 = base + QStringLiteral("tone.mp3");
    set.m4a = base + QStringLiteral("tone.m4a");
    set.ogg = base + QStringLiteral("tone.ogg");
    set.sixChannels = base + QStringLiteral("six.m4a");
    set.mono8k = base + QStringLiteral("mono8k.mp3");
    set.truncatedMp3 = base + QStringLiteral("truncated.mp3");
    set.empty = base + QStringLiteral("empty.mp3");
    set.textWav = base + QStringLiteral("text.wav");
    set.noAudio = base + QStringLiteral("video.mp4");
    const QString sixWav = base + QStringLiteral("six.wav");
    const QString monoWav = base + QStringLiteral("mono8k.wav");

    bool ok = folder.isValid() && writeBytes(set.wav, ToneWav(10, 44100, 2)) &&
              writeBytes(sixWav, ToneWav(2, 48000, 6)) &&
              writeBytes(monoWav, ToneWav(4, 8000, 1)) && writeBytes(set.empty, {}) &&
              writeBytes(set.textWav, "This is not a sound file.\n");
    ok = ok && RunFfmpeg({}, set.wav, {"-c:a", "libmp3lame", "-b:a", "128k"}, set.mp3);
    ok = ok && RunFfmpeg({}, set.wav, {"-c:a", "aac", "-b:a", "128k"}, set.m4a);
    ok = ok && RunFfmpeg({}, set.wav, {"-c:a", "libvorbis", "-q:a", "4"}, set.ogg);
    ok = ok && RunFfmpeg({}, sixWav, {"-c:a", "aac"}, set.sixChannels);
    ok = ok && RunFfmpeg({}, monoWav, {"-c:a", "libmp3lame"}, set.mono8k);
    ok = ok && RunFfmpeg({"-f", "lavfi"}, QStringLiteral("testsrc=duration=1:size=64x64:rate=5"),
                         {"-c:v", "mpeg4"}, set.noAudio);
    QFile mp3(set.mp3);
    ok = ok && mp3.open(QIODevice::ReadOnly);
    const QByteArray whole = mp3.readAll();
    ok = ok && writeBytes(set.truncatedMp3, whole.left(whole.size() * 4 / 10));
    set.ready = ok;
    return set;
}

} // namespace

const SoundSet& Sounds() {
    static const SoundSet set = makeSounds();
    return set;
}
