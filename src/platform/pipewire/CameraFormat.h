#pragma once

#include "platform/pipewire/PodCopy.h"

#include <optional>
#include <spa/param/video/raw.h>
#include <vector>

namespace tavi {

/// One way in which a camera delivers pictures.
struct CameraFormat {
    /// SPA_VIDEO_FORMAT_*; JPEG pictures are SPA_VIDEO_FORMAT_ENCODED.
    spa_video_format format = SPA_VIDEO_FORMAT_UNKNOWN;
    spa_rectangle size{};
    spa_fraction rate{}; ///< Pictures a second; 0/1: whenever there is one.

    /// What a recording takes of a picture.
    int evenWidth() const { return static_cast<int>(size.width & ~1U); }
    int evenHeight() const { return static_cast<int>(size.height & ~1U); }
};

/// The size that a small picture in a film is best made of.
inline constexpr spa_rectangle kMediumSize{640, 480};
/// At least so many pictures a second, if the camera can.
inline constexpr int kWantedRate = 30;

/// What a parameter of a camera offers of the formats that are read: of each range the value
/// nearest to what is wanted.
std::vector<CameraFormat> cameraFormats(const spa_pod& parameter);

/// The nearest to the medium size of those with enough pictures a second, uncompressed if there
/// is a choice; without any, the fastest. Absent when there is nothing to choose from.
std::optional<CameraFormat> bestCameraFormat(const std::vector<CameraFormat>& offered);

/// The parameter that asks for just this.
PodCopy cameraFormatParameter(const CameraFormat& format);

} // namespace tavi
