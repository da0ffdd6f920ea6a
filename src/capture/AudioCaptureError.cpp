#include "capture/AudioCaptureError.h"

namespace tavi {

std::string AudioCaptureError::description() const {
    switch (kind) {
    case Kind::cannotAddInput:
        return "Cannot add microphone input.";
    case Kind::cannotAddOutput:
        return "Cannot add audio output.";
    case Kind::system:
        return reason;
    }
    return reason;
}

} // namespace tavi
