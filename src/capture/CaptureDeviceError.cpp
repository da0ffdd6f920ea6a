#include "capture/CaptureDeviceError.h"

namespace tavi {

namespace {

/// %1 is the device.
const char* sentence(CaptureDeviceError::Kind kind) {
    using Kind = CaptureDeviceError::Kind;
    switch (kind) {
    case Kind::noService:
        return TAVI_TEXT("Errors",
                         "The system's media service does not answer; see that PipeWire runs.");
    case Kind::gone:
        return TAVI_TEXT("Errors", "%1 is not there; plug it in or choose another one.");
    case Kind::refused:
        return TAVI_TEXT("Errors", "%1 can't be used; another program may have it, or permission "
                                   "is missing.");
    case Kind::unsupportedFormat:
        return TAVI_TEXT("Errors",
                         "%1 delivers no format that can be recorded; choose another one.");
    case Kind::silent:
        return TAVI_TEXT("Errors",
                         "%1 sends nothing; see that it is switched on, or plug it in again.");
    case Kind::unconnected:
        return TAVI_TEXT("Errors", "%1 is not connected by the system; see that WirePlumber, or "
                                   "another session manager of PipeWire, runs.");
    }
    return TAVI_TEXT("Errors", "%1 can't be used.");
}

} // namespace

Message CaptureDeviceError::message() const {
    const Message which =
        device.empty() ? Message(TAVI_TEXT("Errors", "The device")) : Message("\"%1\"", {device});
    return {sentence(kind), {which}};
}

} // namespace tavi
