#include "capture/CaptureDeviceError.h"

namespace tavi {

std::string CaptureDeviceError::description() const {
    const std::string which = device.empty() ? "The device" : "\"" + device + "\"";
    switch (kind) {
    case Kind::noService:
        return "The system's media service does not answer; see that PipeWire runs.";
    case Kind::gone:
        return which + " is not there; plug it in or choose another one.";
    case Kind::refused:
        return which + " can't be used; another program may have it, or permission is missing.";
    case Kind::unsupportedFormat:
        return which + " delivers no format that can be recorded; choose another one.";
    case Kind::silent:
        return which + " sends nothing; see that it is switched on, or plug it in again.";
    case Kind::unconnected:
        return which + " is not connected by the system; see that WirePlumber, or another " +
               "session manager of PipeWire, runs.";
    }
    return which + " can't be used.";
}

} // namespace tavi
