#pragma once

#include <QSocketNotifier>

#include <functional>
#include <initializer_list>
#include <memory>
#include <vector>

namespace tavi {

/// Turns signals of the system into calls on the main thread, while its loop runs.
///
/// One object at a time; after it the signals do what they do by default.
class UnixSignals {
public:
    /// Needs a QCoreApplication.
    UnixSignals(std::initializer_list<int> numbers, std::function<void(int)> handler);
    ~UnixSignals();

    UnixSignals(const UnixSignals&) = delete;
    UnixSignals& operator=(const UnixSignals&) = delete;

private:
    void read();

    std::function<void(int)> m_handler;
    std::vector<int> m_signals;
    std::unique_ptr<QSocketNotifier> m_notifier;
};

} // namespace tavi
