#pragma once

#include <QString>
#include <cstdint>

// A source of decoded sound: opens a compressed file and delivers signed
// 16-bit little-endian PCM, channels interleaved, mono or stereo, at the
// stream's own rate. clsWinampPlugin keeps its bookkeeping on top of it.
class SoundDecoder {
public:
    // The largest read any implementation may ask for: the caller's buffer.
    static constexpr int kMaxReadBytes = 9000;

    virtual ~SoundDecoder() = default;

    // Readies the decoders and returns how many are usable (0: none). The
    // folder and window are those of the program; an implementation may
    // ignore them.
    virtual int Initialise(quintptr WindowHandle, const QString& PluginFolder) = 0;
    virtual void CleanUp() = 0;

    virtual bool OpenStream(const QString& FileName) = 0;
    virtual void CloseStream() = 0;

    // Decodes at most Maximum bytes into Buffer; 0 only at the end.
    virtual int Read(void* Buffer, int Maximum) = 0;
    virtual void Seek(int Milliseconds, int Mode) = 0;

    // The preferred read size, never above kMaxReadBytes.
    virtual int GetBufferSize() = 0;
    virtual int GetSampleRate() = 0;
    // 1 or 2 while a stream is open.
    virtual int GetChannels() = 0;
    virtual int GetBytesPerSample() = 0;
    // The track's length in milliseconds; may be refined while decoding.
    virtual int GetTrackTotalTime() = 0;
    virtual int GetPluginCount() = 0;
};
