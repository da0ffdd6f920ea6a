#include "cli/StopCommand.h"

#include "capture/RecorderLock.h"
#include "cli/Output.h"

#include <CLI/CLI.hpp>

#include <chrono>
#include <csignal>
#include <thread>

namespace tavi {

namespace {

/// How often the end of the recorder is looked for: far below what a person notices.
constexpr std::chrono::milliseconds kPollInterval(20);

/// Asks the recorder to stop and waits until its take is saved. A recorder that
/// dies lets its lock go as well, so the wait has an end. SIGUSR1 ends a take, while SIGTERM also
/// ends a program that can do more than record.
int stop() {
    const auto folder = RecorderLock::folder();
    if (!folder) {
        return cli::failed(folder.error().description());
    }
    const auto recorder = RecorderLock::holder(*folder);
    if (!recorder) {
        return cli::failed("No recording is running.");
    }
    if (kill(*recorder, SIGUSR1) != 0) {
        return cli::failed("The running recorder can't be reached.");
    }
    while (RecorderLock::holder(*folder) == recorder) {
        std::this_thread::sleep_for(kPollInterval);
    }
    return 0;
}

} // namespace

void addStopCommand(CLI::App& app, int& exitCode) {
    CLI::App* command =
        app.add_subcommand("stop", "End the take of the running recorder and wait for its files");
    command->callback([&exitCode] { exitCode = stop(); });
}

} // namespace tavi
