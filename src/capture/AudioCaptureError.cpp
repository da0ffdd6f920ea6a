#include "capture/AudioCaptureError.h"

namespace tavi {

Message AudioCaptureError::message() const {
    switch (kind) {
    case Kind::cannotAddInput:
        return TAVI_TEXT("Errors", "Cannot add microphone input.");
    case Kind::cannotAddOutput:
        return TAVI_TEXT("Errors", "Cannot add audio output.");
    case Kind::system:
        return reason;
    }
    return reason;
}

} // namespace tavi
