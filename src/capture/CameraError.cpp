#include "capture/CameraError.h"

namespace tavi {

Message CameraError::message() const {
    switch (kind) {
    case Kind::cannotAddInput:
        return TAVI_TEXT("Errors", "Cannot add camera input.");
    case Kind::cannotAddOutput:
        return TAVI_TEXT("Errors", "Cannot add camera output.");
    case Kind::system:
        return reason;
    }
    return reason;
}

} // namespace tavi
