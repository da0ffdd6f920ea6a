#include "base/SystemReason.h"

#include "base/Message.h"

#include <algorithm>
#include <array>
#include <cerrno>

namespace tavi {

namespace {

struct Reason {
    int code;
    const char* text;
};

constexpr std::array kCommonReasons{
    Reason{EACCES, TAVI_TEXT("Errors", "Permission denied")},
    Reason{EPERM, TAVI_TEXT("Errors", "Operation not permitted")},
    Reason{ENOENT, TAVI_TEXT("Errors", "No such file or directory")},
    Reason{ENOSPC, TAVI_TEXT("Errors", "No space left on device")},
    Reason{EDQUOT, TAVI_TEXT("Errors", "Disk quota exceeded")},
    Reason{EROFS, TAVI_TEXT("Errors", "Read-only file system")},
    Reason{EIO, TAVI_TEXT("Errors", "Input/output error")},
    Reason{EEXIST, TAVI_TEXT("Errors", "File exists")},
    Reason{ENOTDIR, TAVI_TEXT("Errors", "Not a directory")},
    Reason{EISDIR, TAVI_TEXT("Errors", "Is a directory")},
    Reason{ENOTEMPTY, TAVI_TEXT("Errors", "Directory not empty")},
    Reason{EBUSY, TAVI_TEXT("Errors", "Device or resource busy")},
    Reason{EFBIG, TAVI_TEXT("Errors", "File too large")},
    Reason{ENAMETOOLONG, TAVI_TEXT("Errors", "File name too long")},
    Reason{EMFILE, TAVI_TEXT("Errors", "Too many open files")},
    Reason{ENOMEM, TAVI_TEXT("Errors", "Cannot allocate memory")},
};

} // namespace

std::string systemReason(int code) {
    const auto* common = std::find_if(kCommonReasons.begin(), kCommonReasons.end(),
                                      [code](const Reason& reason) { return reason.code == code; });
    return common != kCommonReasons.end() ? common->text : std::generic_category().message(code);
}

std::string systemReason(const std::error_code& error) {
    const bool isErrno =
        error.category() == std::system_category() || error.category() == std::generic_category();
    return isErrno ? systemReason(error.value()) : error.message();
}

} // namespace tavi
