#include "capture/CameraError.h"

namespace tavi {

std::string CameraError::description() const {
    switch (kind) {
    case Kind::cannotAddInput:
        return "Cannot add camera input.";
    case Kind::cannotAddOutput:
        return "Cannot add camera output.";
    case Kind::system:
        return reason;
    }
    return reason;
}

} // namespace tavi
