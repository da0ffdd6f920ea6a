#pragma once

#include "base/Message.h"

#include <string>

namespace tavi {

/// Why a microphone or a camera can't be used.
struct CaptureDeviceError {
    enum class Kind {
        noService, ///< The system's media service does not answer, or has gone.
        gone,      ///< The device is not plugged in (any more).
        refused,   ///< The device may not be used: by permission, or another program has it.
        unsupportedFormat, ///< The device offers nothing that is read.
        silent,            ///< The device is in use here, but sends nothing.
        unconnected,       ///< The device is there, but the system leads nothing from it to here.
    };

    Kind kind = Kind::noService;
    std::string device; ///< Its name for users; may be empty.

    /// One line for the user: what happened and what to do.
    Message message() const;
    std::string description() const { return message().english(); }

    bool operator==(const CaptureDeviceError&) const = default;
};

} // namespace tavi
