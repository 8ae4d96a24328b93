#include "SoundFixtures.h"

#include <QFile>
#include <QProcess>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <sys/stat.h>

OggReport ReadOgg(const QString& path) {
    OggReport report;
    QProcess ogginfo;
    ogginfo.setProcessChannelMode(QProcess::MergedChannels);
    ogginfo.start("ogginfo", {path});
    if (!ogginfo.waitForFinished(60000))
        return report;
    report.text = QString::fromUtf8(ogginfo.readAll());
    report.valid = ogginfo.exitCode() == 0 && !report.text.contains("WARNING") &&
                   !report.text.contains("ERROR");
    auto find = [&report](const char* pattern) {
        return QRegularExpression(QString::fromLatin1(pattern)).match(report.text);
    };
    report.rate = find("Rate: (\\d+)").captured(1).toInt();
    report.channels = find("Channels: (\\d+)").captured(1).toInt();
    report.serial = find("serial: ([0-9a-f]+)").captured(1).toUInt(nullptr, 16);
    const auto length = find("Playback length: (\\d+)m:([\\d.]+)s");
    if (length.hasMatch())
        report.seconds = length.captured(1).toInt() * 60 + length.captured(2).toDouble();
    return report;
}

namespace {

bool ffmpeg(const QStringList& arguments) {
    QProcess ffmpeg;
    ffmpeg.start("ffmpeg", QStringList{"-nostdin", "-v", "error", "-y"} + arguments);
    return ffmpeg.waitForFinished(120000) && ffmpeg.exitStatus() == QProcess::NormalExit &&
           ffmpeg.exitCode() == 0;
}

// A tone of `seconds` at `rate` Hz in `channels` channels, encoded as `codec` says.
bool tone(const QString& path, const char* seconds, const char* rate, const char* channels,
          const QStringList& codec = {}) {
    return ffmpeg(QStringList{"-f", "lavfi", "-i",
                              QStringLiteral("sine=frequency=440:sample_rate=") + rate, "-ac",
                              channels, "-t", seconds} +
                  codec + QStringList{path});
}

bool writeBytes(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    return file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size();
}

bool makeSounds(const QString& base) {
    auto at = [&base](const char* name) -> QString { return base + QLatin1String(name); };
    bool ok = tone(at("tone.wav"), "10", "44100", "2") &&
              tone(at("tone.mp3"), "10", "44100", "2", {"-c:a", "libmp3lame", "-b:a", "128k"}) &&
              tone(at("tone.m4a"), "10", "44100", "2", {"-c:a", "aac", "-b:a", "128k"}) &&
              tone(at("tone.ogg"), "10", "44100", "2", {"-c:a", "libvorbis", "-q:a", "4"}) &&
              tone(at("six.m4a"), "2", "48000", "6", {"-c:a", "aac"}) &&
              tone(at("mono8k.mp3"), "4", "8000", "1", {"-c:a", "libmp3lame"}) &&
              tone(at("silent.wav"), "0", "44100", "2") &&
              ffmpeg({"-f", "lavfi", "-i", "testsrc=duration=1:size=64x64:rate=5", "-c:v", "mpeg4",
                      at("video.mp4")}) &&
              writeBytes(at("empty.mp3"), {}) && writeBytes(at("text.wav"), "Not a sound.\n");
    QFile mp3(at("tone.mp3"));
    ok = ok && mp3.open(QIODevice::ReadOnly);
    QByteArray bytes = mp3.readAll();
    ok = ok && writeBytes(at("truncated.mp3"), bytes.left(bytes.size() * 4 / 10));
    uint32_t noise = 12345;
    for (qsizetype i = bytes.size() / 3; ok && i < bytes.size() / 3 + 20000; ++i)
        bytes[i] = char((noise = noise * 1103515245u + 12345u) >> 24);
    ok = ok && writeBytes(at("damaged.mp3"), bytes);
    // A gigabyte of zeros (sparse, so it costs no disk) that only its name
    // calls an mp3, and a FIFO nobody writes to.
    QFile zeros(at("zeros.mp3"));
    ok = ok && zeros.open(QIODevice::WriteOnly) && zeros.resize(1LL << 30);
    return ok && ::mkfifo(QFile::encodeName(at("fifo.mp3")).constData(), 0600) == 0;
}

} // namespace

QString Sound(const char* name) {
    static QTemporaryDir folder;
    static const bool ready = folder.isValid() && makeSounds(folder.path() + u'/');
    return ready ? folder.path() + u'/' + QLatin1String(name) : QString();
}
