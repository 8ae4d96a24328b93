#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <cstdint>

// Sound files made by the tests themselves: a tone written as WAV, turned into
// other formats by the `ffmpeg` program, and read back by `ogginfo`.

// A sine tone as 16-bit PCM WAV bytes.
QByteArray ToneWav(double seconds, int rate, int channels);

// Runs `ffmpeg` to turn Input into Output with extra options; true on success.
bool RunFfmpeg(const QStringList& inputOptions, const QString& Input,
               const QStringList& outputOptions, const QString& Output);

// What `ogginfo` reports of an Ogg Vorbis file.
struct OggReport {
    bool valid = false; // exit status 0 and no warning or error
    int rate = 0;
    int channels = 0;
    double seconds = -1;
    QString text;
};
OggReport ReadOgg(const QString& path);

// The pages of an Ogg file as the container stores them.
struct OggPage {
    uint8_t headerType = 0; // 1 continued packet, 2 first page, 4 last page
    int64_t granule = 0;
    uint32_t serial = 0;
    int packetsEnded = 0; // lacing values below 255
};
QList<OggPage> ReadOggPages(const QString& path);

// The test sounds, made once per test program in a temporary folder. All are
// the same tone: 10 seconds, 44100 Hz stereo, unless named otherwise.
struct SoundSet {
    bool ready = false;
    QString wav, mp3, m4a, ogg;
    QString sixChannels;  // 2 seconds, 48000 Hz, six channels, AAC in .m4a
    QString mono8k;       // 4 seconds, 8000 Hz mono mp3
    QString truncatedMp3; // the first 40% of the mp3's bytes
    QString empty;        // zero bytes, named .mp3
    QString textWav;      // a text file named .wav
    QString noAudio;      // a video without sound, .mp4
};
const SoundSet& Sounds();
