#pragma once

#include "base/Message.h"

#include <string>

namespace tavi {

/// Why a piece of media could not be read or written.
struct MediaError {
    enum class Kind {
        notFound,     ///< No such file, or one that may not be read.
        notMedia,     ///< The file holds no media that can be read.
        noVideoTrack, ///< Media, but without a picture.
        cannotDecode, ///< No decoder, or the data is damaged beyond use.
        cannotWrite,  ///< The file or its folder can't be written.
        diskFull,     ///< No space left where the file lies.
        noEncoder,    ///< No encoder of the machine takes these settings.
        cannotEncode, ///< The encoder gave up.
    };

    Kind kind = Kind::notMedia;
    std::string file;   ///< Path as the caller gave it.
    std::string reason; ///< What the system or the library said; may be empty.

    /// One line for the user: what happened, to which file, what to do.
    Message message() const;
    std::string description() const { return message().english(); }
};

} // namespace tavi
