#pragma once

#include "capture/CaptureDeviceError.h"
#include "media/MediaError.h"

#include <string>

namespace tavi {

/// Why the camera can't be recorded.
struct CameraError {
    enum class Kind {
        cannotAddInput,
        cannotAddOutput,
        system, ///< A device can't be opened or the file not be made; `reason` is a whole sentence.
    };

    Kind kind = Kind::cannotAddInput;
    std::string reason;

    static CameraError from(const CaptureDeviceError& error) {
        return {Kind::system, error.description()};
    }
    static CameraError from(const MediaError& error) { return {Kind::system, error.description()}; }

    /// One line for the user.
    std::string description() const;

    bool operator==(const CameraError&) const = default;
};

} // namespace tavi
