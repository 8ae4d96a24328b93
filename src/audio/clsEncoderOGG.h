#pragma once

#include "app/FileRecord.h"
#include "clsDLL.h"

#include <QString>
#include <cstdint>
#include <memory>

// The shared libraries the encoder binds. Tests point them at a missing name
// to see the encoder refuse to start.
struct OggLibraryNames {
    QString ogg = QStringLiteral("libogg.so.0");
    // Brings libvorbis.so.0 with it; the analysis exports are found through it.
    QString vorbis = QStringLiteral("libvorbisenc.so.2");
};

// Turns blocks of interleaved signed 16-bit PCM into an Ogg Vorbis file,
// variable bit rate at quality 0.4, through libogg and libvorbis bound at run
// time. One stream at a time: InitStream, EncodeStream per block, CloseStream.
// Pages are written as soon as libogg releases them, so memory stays flat
// whatever the length of the input.
class clsEncoderOGG {
public:
    explicit clsEncoderOGG(OggLibraryNames names = {});
    ~clsEncoderOGG();
    clsEncoderOGG(const clsEncoderOGG&) = delete;
    clsEncoderOGG& operator=(const clsEncoderOGG&) = delete;

    // Loads both libraries; true when both are there.
    bool InitEncoder();

    // Starts a new output file (replacing an existing one). Channels must be 1
    // or 2, the rate at least 1 and the name not empty. A stream still open is
    // finished first.
    bool InitStream(int32_t SampleRate, int16_t Channels, const QString& FileName);

    // Encodes one block of interleaved little-endian 16-bit samples, at least 4
    // and at most 65534 bytes; BytesTaken is set to ByteCount on success.
    bool EncodeStream(const void* Data, int32_t ByteCount, int32_t& BytesTaken);

    // Ends the stream and closes the file; false when nothing was open, or
    // when any of the file could not be written (a full disk).
    bool CloseStream();

    // The serial number of the stream most recently started.
    int SerialNumber() const { return serial_; }
    int16_t Channels() const { return channels_; }
    int32_t SampleRate() const { return sampleRate_; }

private:
    struct StateBlocks;

    void freeStateBlocks();
    bool writePages(bool force);
    bool drainBlocks();
    void clearLibraryState();

    OggLibraryNames names_;
    clsDLL ogg_;
    clsDLL vorbis_;
    float quality_ = 0.0f;
    int32_t nominalBitRate_ = 0; // kept with the settings; the VBR mode does not read it
    bool librariesBound_ = false;
    // Failed once a page could not be written whole (a full disk).
    FileRecord output_;
    int16_t channels_ = 0;
    int32_t sampleRate_ = 0;
    int serial_ = 0;
    std::unique_ptr<StateBlocks> state_;
};

// The serial number of a new stream: a draw in [0, 1) from a generator seeded
// with the time of day, times 100000, rounded (ties to even).
int NextOggSerial();
