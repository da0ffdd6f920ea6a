#include "platform/ffmpeg/FfmpegImageFiles.h"

#include "base/SystemReason.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/FfmpegHandles.h"
#include "platform/ffmpeg/StraightAlpha.h"
#include "platform/ffmpeg/WorkingFile.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <optional>
#include <vector>

namespace tavi {

namespace {

namespace fs = std::filesystem;
using Kind = MediaError::Kind;

constexpr std::uint32_t kLargestSide = 16384;
constexpr std::uint64_t kMostPixels = std::uint64_t{256} << 20;
constexpr std::uintmax_t kLargestFile = std::uintmax_t{512} << 20; ///< Bytes.

/// Signature, length and type of the first chunk (ISO 15948, 5.2 and 11.2.2).
constexpr std::array<std::uint8_t, 16> kOpening{0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n',
                                                0,    0,   0,   13,  'I',  'H',  'D',  'R'};
constexpr std::size_t kSizeEnd = kOpening.size() + 8; ///< After width and height.

std::uint32_t bigEndian(const std::uint8_t* bytes) {
    return std::uint32_t{bytes[0]} << 24 | std::uint32_t{bytes[1]} << 16 |
           std::uint32_t{bytes[2]} << 8 | bytes[3];
}

Result<std::vector<std::uint8_t>, MediaError> readFile(const fs::path& path) {
    std::error_code failure;
    if (fs::is_directory(path, failure)) {
        return fail(mediaError(Kind::notMedia, path, "it is a folder"));
    }
    std::ifstream file(path, std::ios::binary);
    if (!file) {
        return fail(mediaError(Kind::notFound, path, systemReason(errno)));
    }
    const std::uintmax_t size = fs::file_size(path, failure);
    if (failure || size > kLargestFile) {
        return fail(mediaError(Kind::notMedia, path, "it is too large for a picture"));
    }
    std::vector<std::uint8_t> bytes(size + AV_INPUT_BUFFER_PADDING_SIZE);
    file.read(reinterpret_cast<char*>(bytes.data()), static_cast<std::streamsize>(size));
    bytes.resize(static_cast<std::size_t>(file.gcount()));
    return bytes;
}

/// Why the bytes are no PNG that may be decoded; absent for one that may.
std::optional<std::string> refusal(const std::vector<std::uint8_t>& bytes) {
    if (bytes.size() < kSizeEnd || !std::equal(kOpening.begin(), kOpening.end(), bytes.begin())) {
        return "it is no PNG picture";
    }
    const std::uint32_t width = bigEndian(bytes.data() + kOpening.size());
    const std::uint32_t height = bigEndian(bytes.data() + kOpening.size() + 4);
    if (width == 0 || height == 0 || width > kLargestSide || height > kLargestSide ||
        std::uint64_t{width} * height > kMostPixels) {
        return "its size is out of bounds";
    }
    return std::nullopt;
}

FrameHandle decode(std::vector<std::uint8_t>& bytes) {
    const AVCodec* codec = avcodec_find_decoder(AV_CODEC_ID_PNG);
    const CodecHandle context(avcodec_alloc_context3(codec));
    const PacketHandle packet(av_packet_alloc());
    FrameHandle frame(av_frame_alloc());
    // Damage is to be told, not painted over.
    context->err_recognition = AV_EF_CRCCHECK | AV_EF_EXPLODE;
    context->thread_count = 1;
    const int size = static_cast<int>(bytes.size());
    if (avcodec_open2(context.get(), codec, nullptr) < 0 || av_new_packet(packet.get(), size) < 0) {
        return nullptr;
    }
    std::memcpy(packet->data, bytes.data(), bytes.size());
    if (avcodec_send_packet(context.get(), packet.get()) < 0 ||
        avcodec_send_packet(context.get(), nullptr) < 0 ||
        avcodec_receive_frame(context.get(), frame.get()) < 0) {
        return nullptr;
    }
    return frame;
}

/// The picture as straight RGBA, rows without gaps; empty on failure.
std::vector<std::uint8_t> toRgba(const AVFrame& frame) {
    const ScalerHandle scaler(sws_getContext(
        frame.width, frame.height, static_cast<AVPixelFormat>(frame.format), frame.width,
        frame.height, AV_PIX_FMT_RGBA, SWS_POINT | SWS_ACCURATE_RND, nullptr, nullptr, nullptr));
    if (!scaler) {
        return {};
    }
    const int* matrix = sws_getCoefficients(SWS_CS_DEFAULT);
    sws_setColorspaceDetails(scaler.get(), matrix, 1, matrix, 1, 0, 1 << 16, 1 << 16);
    const int stride = frame.width * PixelBuffer::kBytesPerPixel;
    std::vector<std::uint8_t> rgba(static_cast<std::size_t>(stride) *
                                       static_cast<std::size_t>(frame.height) +
                                   AV_INPUT_BUFFER_PADDING_SIZE);
    std::uint8_t* const planes[4] = {rgba.data(), nullptr, nullptr, nullptr};
    const int strides[4] = {stride, 0, 0, 0};
    const int rows =
        sws_scale(scaler.get(), frame.data, frame.linesize, 0, frame.height, planes, strides);
    return rows == frame.height ? rgba : std::vector<std::uint8_t>();
}

/// The whole file's bytes; null on failure.
PacketHandle encode(const PixelBuffer& image) {
    const AVCodec* codec = avcodec_find_encoder(AV_CODEC_ID_PNG);
    const CodecHandle context(avcodec_alloc_context3(codec));
    const FrameHandle frame(av_frame_alloc());
    PacketHandle packet(av_packet_alloc());
    context->width = frame->width = image.width();
    context->height = frame->height = image.height();
    context->pix_fmt = AV_PIX_FMT_RGBA;
    context->time_base = {1, 1};
    context->thread_count = 1;
    frame->format = AV_PIX_FMT_RGBA;
    if (av_frame_get_buffer(frame.get(), 0) < 0 ||
        avcodec_open2(context.get(), codec, nullptr) < 0) {
        return nullptr;
    }
    unpremultiply(image, frame->data[0], static_cast<std::size_t>(frame->linesize[0]));
    if (avcodec_send_frame(context.get(), frame.get()) < 0 ||
        avcodec_send_frame(context.get(), nullptr) < 0 ||
        avcodec_receive_packet(context.get(), packet.get()) < 0) {
        return nullptr;
    }
    return packet;
}

} // namespace

FfmpegImageFiles::FfmpegImageFiles() {
    silenceFfmpegLog();
}

Result<PixelBufferPtr, MediaError> FfmpegImageFiles::readPng(const fs::path& path) {
    auto bytes = readFile(path);
    if (!bytes) {
        return fail(bytes.error());
    }
    if (const auto reason = refusal(*bytes)) {
        return fail(mediaError(Kind::notMedia, path, *reason));
    }
    const FrameHandle frame = decode(*bytes);
    const std::vector<std::uint8_t> rgba = frame ? toRgba(*frame) : std::vector<std::uint8_t>();
    if (rgba.empty()) {
        return fail(mediaError(Kind::cannotDecode, path, "the picture is damaged"));
    }
    auto picture = std::make_shared<PixelBuffer>(frame->width, frame->height);
    premultiply(rgba.data(), static_cast<std::size_t>(frame->width) * PixelBuffer::kBytesPerPixel,
                *picture);
    return picture;
}

Result<void, MediaError> FfmpegImageFiles::writePng(const fs::path& path,
                                                    const PixelBuffer& image) {
    if (image.empty()) {
        return fail(mediaError(Kind::cannotEncode, path, "the picture is empty"));
    }
    const PacketHandle packet = encode(image);
    if (!packet) {
        return fail(mediaError(Kind::cannotEncode, path, "PNG encoder"));
    }
    const auto size = static_cast<std::size_t>(packet->size);
    if (const int code = writeInPlace(path, {packet->data, size}); code != 0) {
        return fail(writeError(path, AVERROR(code)));
    }
    return {};
}

} // namespace tavi
