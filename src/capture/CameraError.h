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
    Message reason;

    static CameraError from(const CaptureDeviceError& error) {
        return {Kind::system, error.message()};
    }
    static CameraError from(const MediaError& error) { return {Kind::system, error.message()}; }

    /// One line for the user.
    Message message() const;
    std::string description() const { return message().english(); }

    bool operator==(const CameraError&) const = default;
};

} // namespace tavi
