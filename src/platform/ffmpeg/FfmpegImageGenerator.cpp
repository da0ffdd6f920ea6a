#include "platform/ffmpeg/FfmpegImageGenerator.h"

#include "platform/ffmpeg/DisplayRotation.h"
#include "platform/ffmpeg/FfmpegAsset.h"
#include "platform/ffmpeg/FfmpegErrors.h"
#include "platform/ffmpeg/PixelConversion.h"
#include "platform/ffmpeg/VideoDecoder.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace tavi {

namespace {

using Kind = MediaError::Kind;

/// The decoded picture in force at `time`; null at the end of the track.
FrameHandle pictureAt(VideoDecoder& decoder, MediaTime time) {
    FrameHandle held(av_frame_alloc());
    decoder.seek(time);
    while (AVFrame* picture = decoder.next()) {
        const bool isAfter = decoder.time() > time;
        if (isAfter && held->buf[0]) {
            break;
        }
        av_frame_unref(held.get());
        av_frame_move_ref(held.get(), picture);
        if (isAfter) {
            break;
        }
    }
    return held->buf[0] ? std::move(held) : nullptr;
}

/// The largest size of the picture's shape inside `bounds`, not above its own;
/// at least one pixel each way.
Size fitted(Size size, Size bounds) {
    const double scale = std::min({1.0, bounds.width / size.width, bounds.height / size.height});
    return {std::max(1.0, std::round(size.width * scale)),
            std::max(1.0, std::round(size.height * scale))};
}

} // namespace

FfmpegImageGenerator::FfmpegImageGenerator(std::shared_ptr<const ColorConverter> colours)
    : m_colours(std::move(colours)) {
    silenceFfmpegLog();
}

Result<PixelBufferPtr, MediaError>
FfmpegImageGenerator::copyImage(const std::filesystem::path& path, MediaTime time,
                                Size maximumSize) {
    const auto asset = openFfmpegAsset(path);
    if (!asset) {
        return fail(asset.error());
    }
    if (asset->videoTracks.empty()) {
        return fail(mediaError(Kind::noVideoTrack, path, {}));
    }
    if (time >= asset->duration && asset->duration.value > 0) {
        return fail(mediaError(Kind::cannotDecode, path, "it ends before the wanted time"));
    }
    auto decoder = VideoDecoder::open(path, asset->videoTracks.front().index);
    if (!decoder) {
        return fail(decoder.error());
    }
    const FrameHandle picture = pictureAt(**decoder, time);
    if (!picture) {
        return fail((*decoder)->error().value_or(
            mediaError(Kind::cannotDecode, path, "no picture at the wanted time")));
    }
    const DisplayRotation rotation = rotationOf((*decoder)->stream());
    const Size bounds =
        rotation.swapsSides() ? Size{maximumSize.height, maximumSize.width} : maximumSize;
    const Size size =
        fitted({static_cast<double>(picture->width), static_cast<double>(picture->height)}, bounds);
    PixelBuffer image(static_cast<int>(size.width), static_cast<int>(size.height));
    if (!PictureDecoding(m_colours).convert(*picture, image)) {
        return fail(mediaError(Kind::cannotDecode, path, "its pixel format is not supported"));
    }
    return std::make_shared<PixelBuffer>(rotation.apply(std::move(image)));
}

} // namespace tavi
