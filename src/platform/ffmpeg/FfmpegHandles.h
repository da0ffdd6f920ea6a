#pragma once

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/buffer.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
#include <libswscale/swscale.h>
}

#include <memory>

namespace tavi {

struct CloseInput {
    void operator()(AVFormatContext* context) const { avformat_close_input(&context); }
};

/// Closes the file too; what was written so far stays in it.
struct CloseOutput {
    void operator()(AVFormatContext* context) const {
        avio_closep(&context->pb);
        avformat_free_context(context);
    }
};

struct FreeCodec {
    void operator()(AVCodecContext* context) const { avcodec_free_context(&context); }
};

struct FreeFrame {
    void operator()(AVFrame* frame) const { av_frame_free(&frame); }
};

struct FreePacket {
    void operator()(AVPacket* packet) const { av_packet_free(&packet); }
};

struct FreeScaler {
    void operator()(SwsContext* context) const { sws_freeContext(context); }
};

struct FreeResampler {
    void operator()(SwrContext* context) const { swr_free(&context); }
};

struct FreeBuffer {
    void operator()(AVBufferRef* buffer) const { av_buffer_unref(&buffer); }
};

struct FreeBufferPool {
    void operator()(AVBufferPool* pool) const { av_buffer_pool_uninit(&pool); }
};

using InputHandle = std::unique_ptr<AVFormatContext, CloseInput>;
using OutputHandle = std::unique_ptr<AVFormatContext, CloseOutput>;
using CodecHandle = std::unique_ptr<AVCodecContext, FreeCodec>;
using FrameHandle = std::unique_ptr<AVFrame, FreeFrame>;
using PacketHandle = std::unique_ptr<AVPacket, FreePacket>;
using ScalerHandle = std::unique_ptr<SwsContext, FreeScaler>;
using ResamplerHandle = std::unique_ptr<SwrContext, FreeResampler>;
using BufferHandle = std::unique_ptr<AVBufferRef, FreeBuffer>;
using BufferPoolHandle = std::unique_ptr<AVBufferPool, FreeBufferPool>;

/// The options of an open call; what the call leaves in it are unknown options.
class Options {
public:
    Options() = default;
    Options(const Options&) = delete;
    Options& operator=(const Options&) = delete;
    ~Options() { av_dict_free(&m_options); }

    void set(const char* key, const char* value) { av_dict_set(&m_options, key, value, 0); }
    void set(const char* key, std::int64_t value) { av_dict_set_int(&m_options, key, value, 0); }
    AVDictionary** address() { return &m_options; }

private:
    AVDictionary* m_options = nullptr;
};

} // namespace tavi
