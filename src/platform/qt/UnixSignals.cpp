#include "platform/qt/UnixSignals.h"

#include <array>
#include <csignal>
#include <fcntl.h>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// From the handler, which may do next to nothing, to the loop: one byte a signal.
std::array<int, 2> signalPipe{-1, -1};

extern "C" void noteSignal(int signal) {
    const auto byte = static_cast<unsigned char>(signal);
    [[maybe_unused]] const ssize_t ignored = write(signalPipe[1], &byte, 1);
}

void handleBy(void (*handler)(int), const std::vector<int>& numbers) {
    struct sigaction action {};
    action.sa_handler = handler;
    action.sa_flags = SA_RESTART;
    for (const int signal : numbers) {
        sigaction(signal, &action, nullptr);
    }
}

} // namespace

UnixSignals::UnixSignals(std::initializer_list<int> numbers, std::function<void(int)> handler)
    : m_handler(std::move(handler)),
      m_signals(numbers) {
    if (pipe2(signalPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    m_notifier = std::make_unique<QSocketNotifier>(signalPipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, [this] { read(); });
    handleBy(noteSignal, m_signals);
}

UnixSignals::~UnixSignals() {
    handleBy(SIG_DFL, m_signals);
    m_notifier.reset();
    for (int& end : signalPipe) {
        close(std::exchange(end, -1));
    }
}

void UnixSignals::read() {
    unsigned char signal = 0;
    while (::read(signalPipe[0], &signal, 1) == 1) {
        m_handler(signal);
    }
}

} // namespace tavi
