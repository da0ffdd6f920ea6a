#pragma once

#include "capture/CaptureDeviceError.h"

#include <string>

namespace tavi {

/// Why the microphone can't be warmed up.
struct AudioCaptureError {
    enum class Kind {
        cannotAddInput,
        cannotAddOutput,
        system, ///< The device can't be opened; `reason` is a whole sentence.
    };

    Kind kind = Kind::cannotAddInput;
    Message reason;

    static AudioCaptureError from(const CaptureDeviceError& error) {
        return {Kind::system, error.message()};
    }

    /// One line for the user.
    Message message() const;
    std::string description() const { return message().english(); }

    bool operator==(const AudioCaptureError&) const = default;
};

} // namespace tavi
