#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/channel_layout.h>
#include <libswresample/swresample.h>
}

// The FFmpeg functions the sound decoder uses.
#define KELVARIS_FFMPEG_FUNCTIONS(X)                                                               \
    X(av_channel_layout_copy)                                                                      \
    X(av_channel_layout_default)                                                                   \
    X(av_channel_layout_uninit)                                                                    \
    X(av_codec_is_decoder)                                                                         \
    X(av_codec_iterate)                                                                            \
    X(av_find_best_stream)                                                                         \
    X(av_frame_alloc)                                                                              \
    X(av_frame_free)                                                                               \
    X(av_frame_unref)                                                                              \
    X(av_log_set_level)                                                                            \
    X(av_packet_alloc)                                                                             \
    X(av_packet_free)                                                                              \
    X(av_packet_unref)                                                                             \
    X(av_read_frame)                                                                               \
    X(av_rescale_q)                                                                                \
    X(av_seek_frame)                                                                               \
    X(avcodec_alloc_context3)                                                                      \
    X(avcodec_flush_buffers)                                                                       \
    X(avcodec_free_context)                                                                        \
    X(avcodec_open2)                                                                               \
    X(avcodec_parameters_to_context)                                                               \
    X(avcodec_receive_frame)                                                                       \
    X(avcodec_send_packet)                                                                         \
    X(avformat_alloc_context)                                                                      \
    X(avformat_close_input)                                                                        \
    X(avformat_find_stream_info)                                                                   \
    X(avformat_open_input)                                                                         \
    X(swr_alloc_set_opts2)                                                                         \
    X(swr_convert)                                                                                 \
    X(swr_free)                                                                                    \
    X(swr_get_out_samples)                                                                         \
    X(swr_init)

// FFmpeg, bound at run time on first use like the Ogg Vorbis libraries: a
// program start that never decodes a sound (the randomizer start, the
// window's start) never loads it and its hundred dependent libraries, and a
// machine without it still runs Kelvaris (the Music tab then says no decoder
// was found).
struct FfmpegLibrary {
#define KELVARIS_FFMPEG_POINTER(name) decltype(&::name) name = nullptr;
    KELVARIS_FFMPEG_FUNCTIONS(KELVARIS_FFMPEG_POINTER)
#undef KELVARIS_FFMPEG_POINTER

    // The libraries of the FFmpeg the program was built against, loaded once
    // for the life of the process; null when any of them or any function is
    // missing.
    static const FfmpegLibrary* Get();
};
