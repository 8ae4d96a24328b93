#pragma once

#include "SoundDecoder.h"

#include <cstdint>
#include <memory>
#include <vector>

struct AVCodecContext;
struct FfmpegLibrary;
struct AVFormatContext;
struct AVFrame;
struct AVPacket;
struct SwrContext;

// SoundDecoder on FFmpeg: whatever container and codec FFmpeg reads, any
// sample format, rate and channel layout in; 16-bit interleaved PCM out at
// the source's rate, downmixed to stereo when the source has more than two
// channels. FFmpeg's own log is silenced. Only regular files are opened, and
// reading stops once far more of the file has gone by without a decoded
// frame than any real stream needs (kMostBytesWithoutSound): a large file of
// noise that only looks like a sound ends quickly, in bounded memory.
class FfmpegDecoder : public SoundDecoder {
public:
    FfmpegDecoder();
    ~FfmpegDecoder() override;

    int Initialise(quintptr WindowHandle, const QString& PluginFolder) override;
    void CleanUp() override;
    bool OpenStream(const QString& FileName) override;
    void CloseStream() override;
    int Read(void* Buffer, int Maximum) override;
    void Seek(int Milliseconds, int Mode) override;
    int GetBufferSize() override { return kMaxReadBytes; }
    int GetSampleRate() override { return sampleRate_; }
    int GetChannels() override { return channels_; }
    int GetBytesPerSample() override { return 2; }
    int GetTrackTotalTime() override;
    int GetPluginCount() override { return pluginCount_; }

    // Bytes of a file that may pass without one decoded frame, from the start
    // (probing) or between two frames.
    static constexpr int64_t kMostBytesWithoutSound = 32LL * 1024 * 1024;

private:
    static int interruptReading(void* decoder);
    bool decodeMore();
    bool convertFrame(const AVFrame* frame);
    bool configureResampler(const AVFrame* frame);

    const FfmpegLibrary* ff_ = nullptr; // bound by Initialise
    int pluginCount_ = 0;
    AVFormatContext* format_ = nullptr;
    AVCodecContext* codec_ = nullptr;
    SwrContext* resampler_ = nullptr;
    AVPacket* packet_ = nullptr;
    AVFrame* frame_ = nullptr;
    int streamIndex_ = -1;
    int sampleRate_ = 0;
    int channels_ = 0;
    int64_t declaredMs_ = 0; // 0 when the container does not say
    int64_t deliveredFrames_ = 0;
    int64_t positionAtLastSound_ = 0; // file position when the last frame came
    bool decoderDrained_ = false;
    bool endSent_ = false; // the end of input was signalled to the decoder
    bool resamplerFlushed_ = false;
    int resamplerInRate_ = 0;
    int resamplerInFormat_ = -1;
    uint64_t resamplerInLayout_ = 0;
    int resamplerInChannels_ = 0;
    std::vector<uint8_t> pending_;
    size_t pendingOffset_ = 0;
};
