#pragma once

#include "base/Message.h"

#include <string>

namespace tavi {

/// Why a take could not start, or why it ended by itself.
struct CaptureError {
    enum class Kind {
        noWindowSystem,    ///< No display server answers.
        noPortal,          ///< The Wayland desktop has no portal that lets a screen be recorded.
        missingExtension,  ///< The server lacks something that capture needs.
        unsupportedFormat, ///< The server's pixels are of a kind that isn't read.
        sourceGone,        ///< The chosen display or window is not there (any more).
        sourceClosed,      ///< The recorded window was closed during the take.
        displayGone,       ///< The recorded display was disconnected or switched off meanwhile.
        connectionLost,    ///< The display server went away during the take.
        castRefused,       ///< The desktop did not start its screen cast.
        castEnded,         ///< The desktop, or its user there, ended the screen cast.
        writer,            ///< The file can't be made or written; `cause` says why.
        camera,            ///< The camera can't be recorded; `cause` says why.
    };

    Kind kind = Kind::noWindowSystem;
    std::string detail; ///< What it was about: a display's name, an extension; may be empty.
    Message cause;      ///< A whole sentence, where the kind tells less than another error.

    /// One line for the user: what happened and what to do.
    Message message() const;
    std::string description() const { return message().english(); }

    bool operator==(const CaptureError&) const = default;
};

} // namespace tavi
