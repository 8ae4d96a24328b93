#include "FfmpegDecoder.h"

#include "FfmpegLibrary.h"
#include "app/FileRecord.h"

#include <QFile>
#include <algorithm>
#include <cstring>

namespace {

constexpr int kBytesPerSample = 2;
// While the length is unknown, or decoding has run past the declared length,
// the reported length keeps this far ahead of what was delivered so the
// caller goes on asking; at the end it becomes exact.
constexpr int64_t kLengthLeadMs = 1000;
// A stream that keeps failing to decode this many packets in a row is over.
constexpr int kMaxBadPacketsInARow = 1000;

int64_t millisecondsOf(const FfmpegLibrary& ff, int64_t value, AVRational timeBase) {
    return ff.av_rescale_q(value, timeBase, AVRational{1, 1000});
}

} // namespace

FfmpegDecoder::FfmpegDecoder() = default;

FfmpegDecoder::~FfmpegDecoder() {
    CloseStream();
}

int FfmpegDecoder::Initialise(quintptr, const QString&) {
    ff_ = FfmpegLibrary::Get();
    if (!ff_) {
        pluginCount_ = 0;
        return 0;
    }
    ff_->av_log_set_level(AV_LOG_QUIET);
    int count = 0;
    void* iterator = nullptr;
    while (const AVCodec* codec = ff_->av_codec_iterate(&iterator))
        if (codec->type == AVMEDIA_TYPE_AUDIO && ff_->av_codec_is_decoder(codec))
            ++count;
    pluginCount_ = count;
    return count;
}

void FfmpegDecoder::CleanUp() {
    CloseStream();
    pluginCount_ = 0;
}

bool FfmpegDecoder::OpenStream(const QString& FileName) {
    CloseStream();
    if (pluginCount_ <= 0 || FileName.isEmpty())
        return false;
    // A FIFO or a device would block or never end.
    if (!IsRegularFile(FileName))
        return false;
    const QByteArray name = QFile::encodeName(FileName);
    format_ = ff_->avformat_alloc_context();
    if (!format_)
        return false;
    format_->interrupt_callback = {&FfmpegDecoder::interruptReading, this};
    positionAtLastSound_ = 0;
    if (ff_->avformat_open_input(&format_, name.constData(), nullptr, nullptr) < 0) {
        format_ = nullptr; // freed by the failed call
        return false;
    }
    const AVCodec* decoder = nullptr;
    bool ok = ff_->avformat_find_stream_info(format_, nullptr) >= 0;
    if (ok) {
        streamIndex_ = ff_->av_find_best_stream(format_, AVMEDIA_TYPE_AUDIO, -1, -1, &decoder, 0);
        ok = streamIndex_ >= 0 && decoder;
    }
    if (ok) {
        codec_ = ff_->avcodec_alloc_context3(decoder);
        ok = codec_ &&
             ff_->avcodec_parameters_to_context(codec_, format_->streams[streamIndex_]->codecpar) >=
                 0 &&
             ff_->avcodec_open2(codec_, decoder, nullptr) >= 0;
    }
    if (ok) {
        const int sourceChannels = codec_->ch_layout.nb_channels;
        sampleRate_ = codec_->sample_rate;
        channels_ = sourceChannels == 1 ? 1 : 2;
        ok = sourceChannels >= 1 && sampleRate_ > 0;
    }
    if (ok) {
        packet_ = ff_->av_packet_alloc();
        frame_ = ff_->av_frame_alloc();
        ok = packet_ && frame_;
    }
    if (!ok) {
        CloseStream();
        return false;
    }
    const AVStream* stream = format_->streams[streamIndex_];
    if (stream->duration != AV_NOPTS_VALUE && stream->duration > 0)
        declaredMs_ = millisecondsOf(*ff_, stream->duration, stream->time_base);
    else if (format_->duration != AV_NOPTS_VALUE && format_->duration > 0)
        declaredMs_ = millisecondsOf(*ff_, format_->duration, AVRational{1, AV_TIME_BASE});
    // Only the chosen stream is decoded; the demuxer may skip the others.
    for (unsigned i = 0; i < format_->nb_streams; ++i)
        if (int(i) != streamIndex_)
            format_->streams[i]->discard = AVDISCARD_ALL;
    return true;
}

void FfmpegDecoder::CloseStream() {
    if (ff_) {
        ff_->swr_free(&resampler_);
        ff_->av_frame_free(&frame_);
        ff_->av_packet_free(&packet_);
        ff_->avcodec_free_context(&codec_);
        if (format_)
            ff_->avformat_close_input(&format_);
    }
    streamIndex_ = -1;
    sampleRate_ = 0;
    channels_ = 0;
    declaredMs_ = 0;
    deliveredFrames_ = 0;
    decoderDrained_ = false;
    endSent_ = false;
    resamplerFlushed_ = false;
    resamplerInRate_ = 0;
    resamplerInFormat_ = -1;
    resamplerInLayout_ = 0;
    resamplerInChannels_ = 0;
    pending_.clear();
    pending_.shrink_to_fit();
    pendingOffset_ = 0;
}

int FfmpegDecoder::Read(void* Buffer, int Maximum) {
    if (!codec_ || !Buffer || Maximum <= 0)
        return 0;
    // Whole frames only, so the caller never sees half a sample pair.
    const int frameBytes = kBytesPerSample * channels_;
    const size_t wanted = size_t(std::min(Maximum, kMaxReadBytes) / frameBytes * frameBytes);
    auto* out = static_cast<uint8_t*>(Buffer);
    size_t written = 0;
    while (written < wanted) {
        if (pendingOffset_ >= pending_.size()) {
            pending_.clear();
            pendingOffset_ = 0;
            if (!decodeMore())
                break;
            continue;
        }
        const size_t take = std::min(wanted - written, pending_.size() - pendingOffset_);
        std::memcpy(out + written, pending_.data() + pendingOffset_, take);
        pendingOffset_ += take;
        written += take;
    }
    deliveredFrames_ += int64_t(written) / frameBytes;
    return int(written);
}

int FfmpegDecoder::interruptReading(void* decoder) {
    const auto* self = static_cast<const FfmpegDecoder*>(decoder);
    const AVIOContext* io = self->format_ ? self->format_->pb : nullptr;
    return io && io->pos - self->positionAtLastSound_ > kMostBytesWithoutSound ? 1 : 0;
}

bool FfmpegDecoder::decodeMore() {
    int badPackets = 0;
    for (;;) {
        const int received = ff_->avcodec_receive_frame(codec_, frame_);
        if (received >= 0) {
            positionAtLastSound_ = format_->pb ? format_->pb->pos : 0;
            const bool converted = convertFrame(frame_);
            ff_->av_frame_unref(frame_);
            if (converted && !pending_.empty())
                return true;
            continue;
        }
        if (received == AVERROR_EOF || decoderDrained_) {
            decoderDrained_ = true;
            // Whatever the resampler still holds comes out once, at the end.
            if (resamplerFlushed_ || !resampler_)
                return false;
            resamplerFlushed_ = true;
            convertFrame(nullptr);
            return !pending_.empty();
        }
        if (received != AVERROR(EAGAIN))
            decoderDrained_ = true; // a decoder that fails outright has ended
        if (decoderDrained_)
            continue;

        // The decoder wants input: the next packet of our stream, or the
        // end-of-stream signal when the file has no more.
        int read = ff_->av_read_frame(format_, packet_);
        while (read >= 0 && packet_->stream_index != streamIndex_) {
            ff_->av_packet_unref(packet_);
            read = ff_->av_read_frame(format_, packet_);
        }
        if (read < 0) {
            // A decoder that still wants input after the end was signalled
            // has nothing more to give.
            if (endSent_)
                decoderDrained_ = true;
            else
                ff_->avcodec_send_packet(codec_, nullptr);
            endSent_ = true;
            continue;
        }
        const int sent = ff_->avcodec_send_packet(codec_, packet_);
        ff_->av_packet_unref(packet_);
        // A damaged packet is skipped; only a long run of them ends the stream.
        if (sent < 0 && sent != AVERROR(EAGAIN) && ++badPackets > kMaxBadPacketsInARow) {
            ff_->avcodec_send_packet(codec_, nullptr);
            endSent_ = true;
        } else if (sent >= 0)
            badPackets = 0;
    }
}

bool FfmpegDecoder::configureResampler(const AVFrame* frame) {
    const uint64_t layoutMask =
        frame->ch_layout.order == AV_CHANNEL_ORDER_NATIVE ? frame->ch_layout.u.mask : 0;
    if (resampler_ && frame->sample_rate == resamplerInRate_ &&
        frame->format == resamplerInFormat_ && layoutMask == resamplerInLayout_ &&
        frame->ch_layout.nb_channels == resamplerInChannels_)
        return true;
    ff_->swr_free(&resampler_);
    if (frame->ch_layout.nb_channels < 1 || frame->sample_rate <= 0)
        return false;

    AVChannelLayout in{};
    if (frame->ch_layout.order == AV_CHANNEL_ORDER_NATIVE)
        ff_->av_channel_layout_copy(&in, &frame->ch_layout);
    else // an unspecified or custom order is taken as the usual one for that count
        ff_->av_channel_layout_default(&in, frame->ch_layout.nb_channels);
    AVChannelLayout out{};
    ff_->av_channel_layout_default(&out, channels_);
    const int made =
        ff_->swr_alloc_set_opts2(&resampler_, &out, AV_SAMPLE_FMT_S16, sampleRate_, &in,
                                 AVSampleFormat(frame->format), frame->sample_rate, 0, nullptr);
    ff_->av_channel_layout_uninit(&in);
    ff_->av_channel_layout_uninit(&out);
    if (made < 0 || ff_->swr_init(resampler_) < 0) {
        ff_->swr_free(&resampler_);
        return false;
    }
    resamplerInRate_ = frame->sample_rate;
    resamplerInFormat_ = frame->format;
    resamplerInLayout_ = layoutMask;
    resamplerInChannels_ = frame->ch_layout.nb_channels;
    return true;
}

bool FfmpegDecoder::convertFrame(const AVFrame* frame) {
    if (frame && !configureResampler(frame))
        return false;
    if (!resampler_)
        return false;
    const int inSamples = frame ? frame->nb_samples : 0;
    const int capacity = ff_->swr_get_out_samples(resampler_, inSamples);
    if (capacity <= 0)
        return true;
    const size_t frameBytes = size_t(kBytesPerSample * channels_);
    pending_.resize(size_t(capacity) * frameBytes);
    uint8_t* out[] = {pending_.data()};
    const int converted = ff_->swr_convert(
        resampler_, out, capacity,
        frame ? const_cast<const uint8_t**>(frame->extended_data) : nullptr, inSamples);
    pending_.resize(converted > 0 ? size_t(converted) * frameBytes : 0);
    pendingOffset_ = 0;
    return converted >= 0;
}

void FfmpegDecoder::Seek(int Milliseconds, int) {
    if (!codec_)
        return;
    const int64_t target = ff_->av_rescale_q(std::max(Milliseconds, 0), AVRational{1, 1000},
                                             format_->streams[streamIndex_]->time_base);
    ff_->av_seek_frame(format_, streamIndex_, target, AVSEEK_FLAG_BACKWARD);
    positionAtLastSound_ = format_->pb ? format_->pb->pos : 0;
    ff_->avcodec_flush_buffers(codec_);
    ff_->swr_free(&resampler_);
    decoderDrained_ = false;
    endSent_ = false;
    resamplerFlushed_ = false;
    pending_.clear();
    pendingOffset_ = 0;
    deliveredFrames_ = int64_t(Milliseconds) * sampleRate_ / 1000;
}

int FfmpegDecoder::GetTrackTotalTime() {
    if (!codec_)
        return 0;
    // Rounded up, so the length never falls short of what was delivered.
    const int64_t deliveredMs = (deliveredFrames_ * 1000 + sampleRate_ - 1) / sampleRate_;
    const bool ended =
        decoderDrained_ && pendingOffset_ >= pending_.size() && (resamplerFlushed_ || !resampler_);
    int64_t total;
    if (ended)
        total = std::max(declaredMs_, deliveredMs);
    else if (declaredMs_ > 0 && deliveredMs <= declaredMs_)
        total = declaredMs_;
    else
        total = deliveredMs + kLengthLeadMs;
    return int(std::min<int64_t>(total, INT32_MAX));
}
