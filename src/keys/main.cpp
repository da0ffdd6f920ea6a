// The key helper: prints one line of JSON per key press of the whole desktop
// until it gets signal 15 or its reader goes away. Where keys can't be watched
// it stays, silent.

#include "keys/KeyLine.h"
#include "keys/X11KeySource.h"

#include <array>
#include <csignal>
#include <cstdlib>
#include <poll.h>
#include <unistd.h>

namespace {

/// The starter may have blocked or ignored signals for itself; they are inherited.
void takeSignalsAgain() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGPIPE, SIG_IGN);
}

bool isReaderGone(short events) {
    return (events & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

/// Waits for news of the source, and for the end of the reader. No source: for the latter only.
int run(tavi::X11KeySource* source) {
    for (;;) {
        std::array<pollfd, 2> waits{
            pollfd{STDOUT_FILENO, 0, 0},
            pollfd{source != nullptr ? source->descriptor() : -1, POLLIN, 0}};
        poll(waits.data(), waits.size(), -1);
        if (isReaderGone(waits[0].revents)) {
            return EXIT_SUCCESS;
        }
        if (waits[1].revents != 0 && !source->readEvents()) {
            source = nullptr;
        }
    }
}

} // namespace

int main() {
    takeSignalsAgain();
    const auto source = tavi::X11KeySource::open([](const std::string& line) {
        if (!tavi::writeLine(line)) {
            std::exit(EXIT_SUCCESS);
        }
    });
    if (source) {
        if (!tavi::writeLine(tavi::kReadyLine)) {
            return EXIT_SUCCESS;
        }
        // What came while the replies were awaited is read already and would wake nobody.
        source->readEvents();
    }
    return run(source.get());
}
