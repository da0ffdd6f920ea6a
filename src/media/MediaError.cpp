#include "media/MediaError.h"

namespace tavi {

namespace {

const char* sentence(MediaError::Kind kind) {
    switch (kind) {
    case MediaError::Kind::notFound:
        return TAVI_TEXT("Errors", "The file can't be opened");
    case MediaError::Kind::notMedia:
        return TAVI_TEXT("Errors", "The file is no video that can be read");
    case MediaError::Kind::noVideoTrack:
        return TAVI_TEXT("Errors", "No video track found in recording");
    case MediaError::Kind::cannotDecode:
        return TAVI_TEXT("Errors", "The video can't be decoded");
    case MediaError::Kind::cannotWrite:
        return TAVI_TEXT("Errors", "The file can't be written");
    case MediaError::Kind::diskFull:
        return TAVI_TEXT("Errors", "The disk is full; free some space and try again");
    case MediaError::Kind::noEncoder:
        return TAVI_TEXT("Errors", "No video encoder works on this machine; run \"tavi doctor\"");
    case MediaError::Kind::cannotEncode:
        return TAVI_TEXT("Errors", "The video encoder failed");
    }
    return TAVI_TEXT("Errors", "Media error");
}

} // namespace

Message MediaError::message() const {
    const Message what = sentence(kind);
    if (file.empty()) {
        return reason.empty() ? what : Message("%1 (%2)", {what, reason});
    }
    return reason.empty() ? Message("%1: %2", {what, file})
                          : Message("%1: %2 (%3)", {what, file, reason});
}

} // namespace tavi
