#include "capture/CaptureError.h"

namespace tavi {

namespace {

std::string withDetail(const std::string& sentence, const std::string& detail) {
    return sentence + (detail.empty() ? "." : " (" + detail + ").");
}

} // namespace

std::string CaptureError::description() const {
    switch (kind) {
    case Kind::noWindowSystem:
        return withDetail("No display server could be reached; start this from a graphical session "
                          "or set DISPLAY",
                          detail);
    case Kind::noPortal:
        return withDetail("This Wayland desktop has no portal for screen casts; install "
                          "xdg-desktop-portal with the back end of this desktop and log in again",
                          detail);
    case Kind::missingExtension:
        return withDetail("The display server lacks an extension that recording needs", detail);
    case Kind::unsupportedFormat:
        return withDetail("The display's pixel format can't be recorded; set it to 24-bit colour",
                          detail);
    case Kind::sourceGone:
        return withDetail("The chosen source is not there; `tavi sources` lists what is", detail);
    case Kind::sourceClosed:
        return withDetail("The recorded window was closed", detail);
    case Kind::displayGone:
        return withDetail("The recorded display was disconnected or switched off", detail);
    case Kind::connectionLost:
        return withDetail("The display server ended the connection", detail);
    case Kind::castRefused:
        return withDetail("The desktop did not start its screen cast; try again, and log in again "
                          "if that doesn't help",
                          detail);
    case Kind::castEnded:
        return withDetail("The desktop ended the screen cast, or the recorded source was closed",
                          detail);
    case Kind::writer:
    case Kind::camera:
        return detail;
    }
    return detail;
}

} // namespace tavi
