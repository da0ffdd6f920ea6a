#pragma once

#include <string>
#include <string_view>

namespace tavi {

/// How a user of this system gets the right to read keyboards and mice, which belongs to the group
/// "input" on all of them.
struct InputAccessAdvice {
    std::string command; ///< To be typed in a terminal, or written into the system's settings.
    /// What to do with it and after it, a sentence.
    std::string description() const;

    bool isSetting = false; ///< The command is a line of the system's settings.

    bool operator==(const InputAccessAdvice&) const = default;
};

/// What every program can do once the right is there. A sentence.
inline constexpr const char* kInputAccessRisk =
    "Every program that you run can then read what you type, passwords included.";

/// The advice for the system that an os-release file describes; the usual one for a system that is
/// not known. Never fails.
InputAccessAdvice inputAccessAdvice(std::string_view osRelease);

/// The advice for this machine (/etc/os-release, else /usr/lib/os-release).
InputAccessAdvice inputAccessAdvice();

} // namespace tavi
