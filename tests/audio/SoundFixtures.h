#pragma once

#include <QString>

// What `ogginfo` reports of an Ogg Vorbis file. Its checks include the
// framing: the start and end flags, and the three header packets ending a
// page of their own with granule position 0.
struct OggReport {
    bool valid = false; // exit status 0 and no warning or error
    int rate = 0;
    int channels = 0;
    double seconds = -1; // to the millisecond
    uint serial = 0;
    QString text;
};
OggReport ReadOgg(const QString& path);

// The path of a test sound by name, all made once per test program by
// `ffmpeg` in a temporary folder; empty when that failed. "tone.wav", ".mp3",
// ".m4a", ".ogg": a 440 Hz tone, 10 s, 44100 Hz stereo; "six.m4a": 2 s,
// 48000 Hz, six channels; "mono8k.mp3": 4 s, 8000 Hz mono; "truncated.mp3":
// the first 40% of tone.mp3; "damaged.mp3": tone.mp3 with 20000 bytes of noise
// a third of the way in; "empty.mp3": zero bytes; "text.wav": text;
// "silent.wav": a WAV header without samples; "video.mp4": no sound.
QString Sound(const char* name);
