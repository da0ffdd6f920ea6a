// The key helper: prints one line of JSON per key press of the whole desktop,
// and per click and tick of a wheel if asked to, until it gets signal 15 or its reader goes away.
// Where keys can't be watched it stays, silent.

#include "base/DesktopSession.h"
#include "keys/KeyLine.h"
#include "keys/LibinputKeySource.h"
#include "keys/X11KeySource.h"

#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <poll.h>
#include <string_view>
#include <unistd.h>

namespace {

constexpr int kUsageError = 2;

/// The starter may have blocked or ignored signals for itself; they are inherited.
void takeSignalsAgain() {
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
    std::signal(SIGTERM, SIG_DFL);
    std::signal(SIGPIPE, SIG_IGN);
}

void print(std::string_view line) {
    if (!tavi::writeLine(line)) {
        std::exit(EXIT_SUCCESS);
    }
}

/// An X server below a Wayland session sees only the keys of its own windows.
std::unique_ptr<tavi::KeySource> openSource(tavi::LibinputKeySource::Wanted wanted) {
    if (!tavi::isWaylandSession()) {
        if (auto server = tavi::X11KeySource::open(print)) {
            return server;
        }
    }
    return tavi::LibinputKeySource::open(wanted, print);
}

bool isReaderGone(short events) {
    return (events & (POLLERR | POLLHUP | POLLNVAL)) != 0;
}

/// Waits for news of the source, and for the end of the reader. No source: for the latter only.
int run(std::unique_ptr<tavi::KeySource> source) {
    bool hasSaidReady = false;
    for (;;) {
        if (source && source->isListening() && !hasSaidReady) {
            print(tavi::kReadyLine);
            hasSaidReady = true;
            // What came while the replies were awaited is read already and would wake nobody.
            source->readEvents();
        }
        std::array<pollfd, 2> waits{pollfd{STDOUT_FILENO, 0, 0},
                                    pollfd{source ? source->descriptor() : -1, POLLIN, 0}};
        poll(waits.data(), waits.size(), -1);
        if (isReaderGone(waits[0].revents)) {
            return EXIT_SUCCESS;
        }
        if (waits[1].revents != 0 && !source->readEvents()) {
            source.reset();
        }
    }
}

} // namespace

/// Clicks are for a Wayland session: in one of X11 the server tells everyone of them.
int main(int argc, char** argv) {
    using Wanted = tavi::LibinputKeySource::Wanted;
    const bool isPointerWanted = argc > 1 && std::string_view(argv[1]) == "--pointer-buttons";
    if (argc > 2 || (argc == 2 && !isPointerWanted)) {
        std::fputs("Usage: TaviKeys [--pointer-buttons]\n", stderr);
        return kUsageError;
    }
    takeSignalsAgain();
    return run(openSource(isPointerWanted ? Wanted::keysAndPointer : Wanted::keys));
}
