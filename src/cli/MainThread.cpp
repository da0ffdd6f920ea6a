#include "cli/MainThread.h"

#include <csignal>
#include <fcntl.h>
#include <unistd.h>

namespace tavi::cli {

namespace {

volatile std::sig_atomic_t stopRequested = 0;
/// A pipe from the signal handler to the loop.
std::array<int, 2> stopPipe{-1, -1};

extern "C" void requestStop(int) {
    stopRequested = 1;
    const char byte = 0;
    [[maybe_unused]] const ssize_t ignored = write(stopPipe[1], &byte, 1);
}

} // namespace

StopSignals::StopSignals() {
    if (pipe2(stopPipe.data(), O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    struct sigaction action {};
    action.sa_handler = requestStop;
    action.sa_flags = SA_RESTART;
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGUSR1}) {
        sigaction(signal, &action, nullptr);
    }
}

bool StopSignals::hasCome() const {
    return stopRequested != 0;
}

void StopSignals::whenTheyCome(std::function<void()> block) {
    m_notifier = std::make_unique<QSocketNotifier>(stopPipe[0], QSocketNotifier::Read);
    QObject::connect(m_notifier.get(), &QSocketNotifier::activated, m_notifier.get(),
                     [this, block = std::move(block)] {
                         m_notifier->setEnabled(false);
                         block();
                     });
}

} // namespace tavi::cli
