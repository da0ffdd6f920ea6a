#pragma once

#include <string>

namespace tavi {

/// Tells when who may read the input devices may have changed: a device came, or the rights
/// of one were changed. Wakes nobody in between.
class InputFolderWatch {
public:
    InputFolderWatch();
    ~InputFolderWatch();
    InputFolderWatch(const InputFolderWatch&) = delete;
    InputFolderWatch& operator=(const InputFolderWatch&) = delete;

    /// Readable when something changed.
    int descriptor() const { return m_inotify; }

    /// True when something changed since the last call.
    bool takeNews();

private:
    void watch();

    int m_inotify;
};

} // namespace tavi
