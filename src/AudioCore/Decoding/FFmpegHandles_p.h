#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include <memory>

namespace vantor {

struct FFmpegDeleter {
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(SwrContext *context) const { swr_free(&context); }
    void operator()(AVIOContext *context) const {
        av_freep(&context->buffer);
        avio_context_free(&context);
    }
};

template <class T>
using FFmpegHandle = std::unique_ptr<T, FFmpegDeleter>;

} // namespace vantor
