#pragma once

#include "SoundDecoder.h"

#include <QString>
#include <cstdint>
#include <memory>

// Decodes a sound file chunk by chunk for the encoder, on top of a
// SoundDecoder: keeps the open flag, the running count of bytes delivered and
// the expected total derived from the track length, which caps the stream.
class clsWinampPlugin {
public:
    // The caller's chunk buffer holds this many bytes.
    static constexpr int kChunkBytes = SoundDecoder::kMaxReadBytes;
    // Bytes left undelivered at the end of ".mp4" and ".m4a" tracks.
    static constexpr int kMp4TailSkip = 9000;

    // Without a decoder, FFmpeg's is used.
    explicit clsWinampPlugin(std::unique_ptr<SoundDecoder> decoder = nullptr);
    ~clsWinampPlugin();
    clsWinampPlugin(const clsWinampPlugin&) = delete;
    clsWinampPlugin& operator=(const clsWinampPlugin&) = delete;

    // Readies the decoders; returns how many there are (0: none).
    int Init(const QString& PluginFolder, quintptr WindowHandle);

    bool OpenFile(const QString& FileName);
    void CloseFile();

    int64_t ReadBytes() const { return readBytes_; }
    int64_t TotalBytes() const { return totalBytes_; }
    int SampleRate() const;
    int Channels() const;
    void TrackSeek(int Milliseconds);
    int TrackTotalTime() const;
    int TrackCurrentTime() const;
    int PluginCount() const { return decoder_->GetPluginCount(); }

    // Places the next chunk of PCM (at most kChunkBytes) in Buffer and
    // returns its length; 0 at the end or once the expected total is reached.
    int ConvertChunk(void* Buffer);

private:
    int64_t expectedTotal() const;

    std::unique_ptr<SoundDecoder> decoder_;
    bool open_ = false;
    int tailSkip_ = 0;
    int pluginCount_ = 0;
    int readSize_ = 0;
    int64_t totalBytes_ = 0;
    int64_t readBytes_ = 0;
};
