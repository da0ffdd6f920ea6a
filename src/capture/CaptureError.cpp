#include "capture/CaptureError.h"

namespace tavi {

namespace {

/// Without the full stop, so that a detail fits in.
const char* sentence(CaptureError::Kind kind) {
    using Kind = CaptureError::Kind;
    switch (kind) {
    case Kind::noWindowSystem:
        return TAVI_TEXT("Errors",
                         "No display server could be reached; start this from a graphical session "
                         "or set DISPLAY");
    case Kind::noPortal:
        return TAVI_TEXT("Errors",
                         "This Wayland desktop has no portal for screen casts; install "
                         "xdg-desktop-portal with the back end of this desktop and log in again");
    case Kind::missingExtension:
        return TAVI_TEXT("Errors", "The display server lacks an extension that recording needs");
    case Kind::unsupportedFormat:
        return TAVI_TEXT("Errors",
                         "The display's pixel format can't be recorded; set it to 24-bit colour");
    case Kind::sourceGone:
        return TAVI_TEXT("Errors", "The chosen source is not there; `tavi sources` lists what is");
    case Kind::sourceClosed:
        return TAVI_TEXT("Errors", "The recorded window was closed");
    case Kind::displayGone:
        return TAVI_TEXT("Errors", "The recorded display was disconnected or switched off");
    case Kind::connectionLost:
        return TAVI_TEXT("Errors", "The display server ended the connection");
    case Kind::castRefused:
        return TAVI_TEXT("Errors",
                         "The desktop did not start its screen cast; try again, and log in again "
                         "if that doesn't help");
    case Kind::castEnded:
        return TAVI_TEXT("Errors",
                         "The desktop ended the screen cast, or the recorded source was closed");
    case Kind::writer:
    case Kind::camera:
        break;
    }
    return TAVI_TEXT("Errors", "The recording failed");
}

} // namespace

Message CaptureError::message() const {
    if (!cause.text.empty()) {
        return cause;
    }
    return detail.empty() ? Message("%1.", {sentence(kind)})
                          : Message("%1 (%2).", {sentence(kind), detail});
}

} // namespace tavi
