#pragma once

#include <QSocketNotifier>

#include <array>
#include <functional>
#include <memory>

namespace tavi::cli {

/// Turns the signals that ask a program to end into a call on the main thread.
///
/// One object at a time, made before anything that must not be cut short; it
/// stays until the process ends.
class StopSignals {
public:
    StopSignals();

    /// True once a signal came, whether or not a loop was there to tell.
    bool hasCome() const;

    /// Calls `block` at a signal, and at once when one has come already. Needs a
    /// QCoreApplication.
    void whenTheyCome(std::function<void()> block);

private:
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tavi::cli
