#include "capture/PosixHelperLauncher.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/eventfd.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// A descriptor with an owner.
class Descriptor {
public:
    explicit Descriptor(int fd = -1) : m_fd(fd) {}
    ~Descriptor() { close(); }
    Descriptor(Descriptor&& other) noexcept : m_fd(std::exchange(other.m_fd, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        close();
        m_fd = std::exchange(other.m_fd, -1);
        return *this;
    }

    int get() const { return m_fd; }
    void close() {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
        m_fd = -1;
    }

private:
    int m_fd;
};

/// Waits for the child until `patience` is over; true when it was reaped.
bool reapWithin(pid_t pid, int patienceMs) {
    const Descriptor process(static_cast<int>(syscall(SYS_pidfd_open, pid, 0)));
    if (process.get() < 0) {
        return waitpid(pid, nullptr, WNOHANG) != 0;
    }
    pollfd ended{process.get(), POLLIN, 0};
    while (poll(&ended, 1, patienceMs) < 0 && errno == EINTR) {
    }
    return waitpid(pid, nullptr, WNOHANG) != 0;
}

class PosixHelperProcess final : public HelperProcess {
public:
    PosixHelperProcess(pid_t pid, Descriptor output, Descriptor wake,
                       HelperLauncher::ChunkHandler onChunk)
        : m_pid(pid),
          m_output(std::move(output)),
          m_wake(std::move(wake)),
          m_reader([this, handler = std::move(onChunk)] { read(handler); }) {}

    ~PosixHelperProcess() override {
        eventfd_write(m_wake.get(), 1);
        m_reader.join();
        m_output.close();
        kill(m_pid, SIGTERM);
        if (!reapWithin(m_pid, PosixHelperLauncher::kPatienceMs)) {
            kill(m_pid, SIGKILL);
            waitpid(m_pid, nullptr, 0);
        }
    }

    pid_t pid() const override { return m_pid; }

private:
    void read(const HelperLauncher::ChunkHandler& onChunk) const {
        std::array<char, 65536> chunk; // the most that a pipe holds
        for (;;) {
            std::array<pollfd, 2> waits{pollfd{m_output.get(), POLLIN, 0},
                                        pollfd{m_wake.get(), POLLIN, 0}};
            if (poll(waits.data(), waits.size(), -1) < 0 && errno != EINTR) {
                return;
            }
            if (waits[1].revents != 0) {
                return;
            }
            const ssize_t count = ::read(m_output.get(), chunk.data(), chunk.size());
            if (count > 0) {
                onChunk({chunk.data(), static_cast<std::size_t>(count)});
            } else if (count == 0 || (errno != EINTR && errno != EAGAIN)) {
                return;
            }
        }
    }

    pid_t m_pid;
    Descriptor m_output;
    Descriptor m_wake;
    std::thread m_reader;
};

/// Starts the program with `output` as its standard output; 0 when it can't be.
pid_t spawn(HelperCommand command, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    std::vector<char*> arguments{command.path.data()};
    for (std::string& argument : command.arguments) {
        arguments.push_back(argument.data());
    }
    arguments.push_back(nullptr);
    pid_t pid = 0;
    const int failed =
        posix_spawn(&pid, command.path.c_str(), &actions, nullptr, arguments.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    return failed != 0 ? 0 : pid;
}

} // namespace

std::unique_ptr<HelperProcess> PosixHelperLauncher::launch(const HelperCommand& command,
                                                           ChunkHandler onChunk) {
    std::array<int, 2> ends{};
    // Both ends close themselves in every child; the copy at descriptor 1 stays open.
    if (pipe2(ends.data(), O_CLOEXEC) != 0) {
        return nullptr;
    }
    Descriptor readEnd(ends[0]);
    Descriptor writeEnd(ends[1]);
    Descriptor wake(eventfd(0, EFD_CLOEXEC));
    if (wake.get() < 0) {
        return nullptr;
    }
    const pid_t pid = spawn(command, writeEnd.get());
    writeEnd.close();
    if (pid == 0) {
        return nullptr;
    }
    fcntl(readEnd.get(), F_SETFL, O_NONBLOCK);
    return std::make_unique<PosixHelperProcess>(pid, std::move(readEnd), std::move(wake),
                                                std::move(onChunk));
}

} // namespace tavi
