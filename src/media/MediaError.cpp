#include "media/MediaError.h"

namespace tavi {

namespace {

const char* sentence(MediaError::Kind kind) {
    switch (kind) {
    case MediaError::Kind::notFound:
        return "The file can't be opened";
    case MediaError::Kind::notMedia:
        return "The file is no video that can be read";
    case MediaError::Kind::noVideoTrack:
        return "No video track found in recording";
    case MediaError::Kind::cannotDecode:
        return "The video can't be decoded";
    case MediaError::Kind::cannotWrite:
        return "The file can't be written";
    case MediaError::Kind::diskFull:
        return "The disk is full; free some space and try again";
    case MediaError::Kind::noEncoder:
        return "No video encoder works on this machine; run \"tavi doctor\"";
    case MediaError::Kind::cannotEncode:
        return "The video encoder failed";
    }
    return "Media error";
}

} // namespace

std::string MediaError::description() const {
    std::string text = sentence(kind);
    if (!file.empty()) {
        text += ": " + file;
    }
    if (!reason.empty()) {
        text += " (" + reason + ")";
    }
    return text;
}

} // namespace tavi
