#pragma once

#include <vector>

namespace tavi {

/// A window of this program.
class ApplicationWindow {
public:
    virtual ~ApplicationWindow() = default;

    virtual void miniaturize() = 0;
    virtual bool isMiniaturized() const = 0;

    /// Shows it again, at its old place and size.
    virtual void deminiaturize() = 0;
};

/// The windows of this program. Thread: main. What is returned lives until the next call.
class ApplicationWindows {
public:
    virtual ~ApplicationWindows() = default;

    /// The window that takes the keys; null when another program has them.
    virtual ApplicationWindow* keyWindow() = 0;

    /// All of them, oldest first.
    virtual std::vector<ApplicationWindow*> windows() = 0;

    /// Brings the program in front of all others.
    virtual void activateIgnoringOtherApps() = 0;
};

} // namespace tavi
