#include "clsEncoderOGG.h"

#include "app/Clock.h"
#include "app/NumberText.h"

#include <QFile>
#include <bit>
#include <ogg/ogg.h>
#include <random>
#include <vorbis/codec.h>
#include <vorbis/vorbisenc.h>

// The libraries' own types describe each export; the functions themselves
// are looked up by name in the bound library at each call.
#define OGG(function, ...) ogg_.CallFunc<decltype(function)>(#function, __VA_ARGS__)
#define VORBIS(function, ...) vorbis_.CallFunc<decltype(function)>(#function, __VA_ARGS__)

namespace {

constexpr float kQuality = 0.4f;
constexpr int32_t kNominalBitRate = 128000;
constexpr int32_t kMaxBlockBytes = 32767 * 2;
constexpr int kSerialRange = 100000;

// A result whose export was missing counts as the given failure value.
template <typename T> int resultOr(const std::optional<T>& result, int failure) {
    return result ? int(*result) : failure;
}

} // namespace

// The library state records of one stream, zero-filled when a stream starts.
struct clsEncoderOGG::StateBlocks {
    ogg_stream_state stream{};
    ogg_page page{};
    ogg_packet packet{};
    vorbis_comment comment{};
    vorbis_info info{};
    vorbis_dsp_state dsp{};
    vorbis_block block{};
    // Which set-up calls succeeded, so clean-up after a failed start touches
    // only what the libraries initialised.
    bool infoReady = false;
    bool dspReady = false;
    bool blockReady = false;
    bool streamReady = false;
};

int NextOggSerial() {
    // Reseeding from the clock alone would repeat a serial for two streams
    // started within the same clock tick, so the previous state is mixed in.
    static std::mt19937 generator;
    const auto now = std::bit_cast<uint64_t>(SecondsSinceMidnight());
    std::seed_seq seed{uint32_t(now), uint32_t(now >> 32), uint32_t(generator())};
    generator.seed(seed);
    const double draw = std::generate_canonical<double, 53>(generator);
    return int(RoundHalfEven(draw * kSerialRange));
}

clsEncoderOGG::clsEncoderOGG(OggLibraryNames names) : names_(std::move(names)) {}

clsEncoderOGG::~clsEncoderOGG() {
    CloseStream();
}

bool clsEncoderOGG::InitEncoder() {
    // Binding again while a stream is open would lose its file.
    CloseStream();
    const bool oggLoaded = ogg_.LoadDLL(names_.ogg);
    const bool vorbisLoaded = oggLoaded && vorbis_.LoadDLL(names_.vorbis);
    librariesBound_ = oggLoaded && vorbisLoaded;
    if (librariesBound_) {
        ogg_.SetIsCDECL(true);
        vorbis_.SetIsCDECL(true);
    }
    quality_ = kQuality;
    nominalBitRate_ = kNominalBitRate;
    CloseFileRecord(output_);
    return librariesBound_;
}

bool clsEncoderOGG::InitStream(int32_t SampleRate, int16_t Channels, const QString& FileName) {
    if (!librariesBound_)
        return false;
    CloseStream();
    if (Channels < 1 || Channels > 2 || SampleRate < 1 || FileName.isEmpty())
        return false;
    channels_ = Channels;
    sampleRate_ = SampleRate;
    output_ = OpenFileRecord(FileName, kGenericWrite, kShareRead, kCreateAlways);
    if (output_.Handle == -1)
        return false;

    state_ = std::make_unique<StateBlocks>();
    StateBlocks& s = *state_;
    bool ok = VORBIS(vorbis_info_init, &s.info).has_value();
    s.infoReady = ok;
    ok = ok && resultOr(VORBIS(vorbis_encode_init_vbr, &s.info, long(Channels), long(SampleRate),
                               quality_),
                        -1) >= 0;
    ok = ok && resultOr(VORBIS(vorbis_analysis_init, &s.dsp, &s.info), -1) == 0;
    s.dspReady = ok;
    ok = ok && resultOr(VORBIS(vorbis_block_init, &s.dsp, &s.block), -1) == 0;
    s.blockReady = ok;
    if (ok) {
        serial_ = NextOggSerial();
        ok = resultOr(OGG(ogg_stream_init, &s.stream, serial_), -1) == 0;
        s.streamReady = ok;
    }
    if (ok) {
        ogg_packet identification{}, comment{}, setup{};
        VORBIS(vorbis_analysis_headerout, &s.dsp, &s.comment, &identification, &comment, &setup);
        OGG(ogg_stream_packetin, &s.stream, &identification);
        OGG(ogg_stream_packetin, &s.stream, &comment);
        OGG(ogg_stream_packetin, &s.stream, &setup);
        // The headers stand on pages of their own, so the audio starts on a
        // fresh page.
        if (writePages(true))
            return true;
    }
    clearLibraryState();
    CloseFileRecord(output_);
    freeStateBlocks();
    return false;
}

bool clsEncoderOGG::EncodeStream(const void* Data, int32_t ByteCount, int32_t& BytesTaken) {
    if (!librariesBound_ || output_.Handle == -1 || !Data || ByteCount < 4 ||
        ByteCount > kMaxBlockBytes)
        return false;
    StateBlocks& s = *state_;
    const int samples = ByteCount / 2;
    const int frames = samples / channels_;
    float** buffers = VORBIS(vorbis_analysis_buffer, &s.dsp, frames).value_or(nullptr);
    if (!buffers)
        return false;

    // Little-endian 16-bit samples to floats in [-1, 1); stereo is split into
    // its left and right channel buffers.
    const auto* bytes = static_cast<const unsigned char*>(Data);
    auto sampleAt = [bytes](int i) {
        return float(int16_t(uint16_t(bytes[2 * i] | (bytes[2 * i + 1] << 8)))) / 32768.0f;
    };
    if (channels_ == 1) {
        for (int i = 0; i < frames; ++i)
            buffers[0][i] = sampleAt(i);
    } else {
        for (int i = 0; i < frames; ++i) {
            buffers[0][i] = sampleAt(2 * i);
            buffers[1][i] = sampleAt(2 * i + 1);
        }
    }
    VORBIS(vorbis_analysis_wrote, &s.dsp, frames);
    // A failure while draining is not reported: the caller goes on either way.
    drainBlocks();
    BytesTaken = ByteCount;
    return true;
}

bool clsEncoderOGG::CloseStream() {
    if (!librariesBound_ || output_.Handle == -1)
        return false;
    StateBlocks& s = *state_;
    // Marking the end of input makes libogg emit the last page, flagged as
    // the end of the stream.
    VORBIS(vorbis_analysis_wrote, &s.dsp, 0);
    drainBlocks();
    clearLibraryState();
    CloseFileRecord(output_);
    freeStateBlocks();
    channels_ = 0;
    sampleRate_ = 0;
    return !output_.Failed;
}

void clsEncoderOGG::clearLibraryState() {
    StateBlocks& s = *state_;
    if (s.streamReady)
        OGG(ogg_stream_clear, &s.stream);
    if (s.blockReady)
        VORBIS(vorbis_block_clear, &s.block);
    if (s.dspReady)
        VORBIS(vorbis_dsp_clear, &s.dsp);
    if (s.infoReady) {
        VORBIS(vorbis_comment_clear, &s.comment);
        VORBIS(vorbis_info_clear, &s.info);
    }
    s.streamReady = s.blockReady = s.dspReady = s.infoReady = false;
}

void clsEncoderOGG::freeStateBlocks() {
    state_.reset();
}

bool clsEncoderOGG::writePages(bool force) {
    StateBlocks& s = *state_;
    for (;;) {
        const int more = force ? resultOr(OGG(ogg_stream_flush, &s.stream, &s.page), 0)
                               : resultOr(OGG(ogg_stream_pageout, &s.stream, &s.page), 0);
        if (more == 0)
            break;
        // A page that cannot be written marks the record failed.
        WriteFileBytes(output_, s.page.header, s.page.header_len);
        WriteFileBytes(output_, s.page.body, s.page.body_len);
    }
    return true;
}

bool clsEncoderOGG::drainBlocks() {
    StateBlocks& s = *state_;
    while (resultOr(VORBIS(vorbis_analysis_blockout, &s.dsp, &s.block), 0) == 1) {
        if (resultOr(VORBIS(vorbis_analysis, &s.block, static_cast<ogg_packet*>(nullptr)), -1) < 0)
            return false;
        if (resultOr(VORBIS(vorbis_bitrate_addblock, &s.block), -1) < 0)
            return false;
        while (resultOr(VORBIS(vorbis_bitrate_flushpacket, &s.dsp, &s.packet), 0) >= 1) {
            OGG(ogg_stream_packetin, &s.stream, &s.packet);
            if (!writePages(false))
                return false;
        }
    }
    return true;
}
