#include "cli/RecordCommand.h"

#include "capture/HelperPath.h"
#include "capture/PosixHelperLauncher.h"
#include "capture/RecorderLock.h"
#include "capture/TakeRecorder.h"
#include "cli/MainThread.h"
#include "cli/Output.h"
#include "cli/TakeDeviceChoice.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/pipewire/PipeWireDevices.h"
#include "platform/pipewire/PipeWireSessions.h"
#include "platform/x11/X11Pointer.h"
#include "platform/x11/X11PointerMonitors.h"
#include "platform/x11/X11ScreenStreams.h"
#include "platform/x11/X11ShareableContent.h"
#include "project/RecordingFolder.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>
#include <QCoreApplication>
#include <QThread>
#include <QTimer>
#include <fmt/format.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <iostream>
#include <memory>
#include <unistd.h>

namespace tavi {

namespace {

struct TakeOptions {
    int display = 0;
    std::optional<std::uint32_t> window; ///< Recorded instead of a display.
    cli::TakeDeviceNames devices;
    double countdown = 0;           ///< Seconds before the take starts.
    std::optional<double> duration; ///< Seconds after which it ends by itself.
};

constexpr unsigned long kMicrophonePoll = 10; // milliseconds

/// One line on a terminal that is written over and over; nothing elsewhere.
class StatusLine {
public:
    ~StatusLine() { show(""); }

    void show(const std::string& text) {
        if (m_isTerminal && text != m_text) {
            std::cerr << "\r\x1b[K" << text << std::flush;
            m_text = text;
        }
    }

private:
    bool m_isTerminal = isatty(STDERR_FILENO) == 1;
    std::string m_text;
};

std::string elapsedText(double seconds) {
    const auto whole = static_cast<long long>(seconds);
    return fmt::format("● {}:{:02}  Ctrl-C or `tavi stop` ends the recording", whole / 60,
                       whole % 60);
}

/// Runs the Qt loop until a signal comes or `seconds` are over.
void countDown(double seconds, cli::StopSignals& stopSignals, StatusLine& status) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    QTimer timer;
    const auto update = [&] {
        const std::chrono::duration<double> left = end - std::chrono::steady_clock::now();
        status.show(fmt::format("{:.0f}", std::ceil(left.count())));
        if (left.count() <= 0) {
            QCoreApplication::quit();
        }
    };
    QObject::connect(&timer, &QTimer::timeout, update);
    stopSignals.whenTheyCome([] { QCoreApplication::quit(); });
    timer.start(20);
    QCoreApplication::exec();
}

/// Runs the Qt loop until the take is to end: by a signal, its length or a failure.
void runTake(TakeRecorder& recorder, const TakeOptions& options, cli::StopSignals& stopSignals,
             StatusLine& status) {
    QTimer timer;
    timer.setTimerType(Qt::PreciseTimer);
    QObject::connect(&timer, &QTimer::timeout, [&] {
        recorder.tick();
        const auto interruption = recorder.interruption();
        status.show(interruption ? interruption->description()
                                 : elapsedText(recorder.elapsedTime()));
        const double left = options.duration.value_or(INFINITY) - recorder.elapsedTime();
        if (left <= 0 || recorder.failure()) {
            QCoreApplication::quit();
        }
        const double pause = std::clamp(left, 0.001, TakeRecorder::kTickInterval);
        timer.setInterval(static_cast<int>(std::ceil(pause * 1000)));
    });
    timer.start(static_cast<int>(TakeRecorder::kTickInterval * 1000));
    stopSignals.whenTheyCome([] { QCoreApplication::quit(); });
    QCoreApplication::exec();
}

/// A window that was closed ended the take as a user may: it is said, and is no failure.
int finish(TakeRecorder& recorder) {
    recorder.tick();
    const auto folder = recorder.stop();
    if (folder) {
        cli::printLine(folder->string());
    }
    const auto failure = recorder.failure();
    if (!failure) {
        return 0;
    }
    const int status = cli::failed("The recording ended early. " + failure->description());
    return folder && failure->kind == CaptureError::Kind::sourceClosed ? 0 : status;
}

/// Asks the system for devices only when some are wanted.
Result<TakeDevices, std::string> findDevices(const cli::TakeDeviceNames& names,
                                             CaptureSessions& sessions, Executor& main) {
    if (names.isEmpty()) {
        return TakeDevices{};
    }
    PipeWireDevices devices(main);
    return cli::findTakeDevices(names, devices, sessions);
}

int recordSource(const TakeSource& source, const TakeOptions& options,
                 cli::StopSignals& stopSignals) {
    auto monitors = X11PointerMonitors::open();
    auto pointer = X11Pointer::open();
    if (!monitors || !pointer) {
        return cli::failed((monitors ? pointer.error() : monitors.error()).description());
    }
    X11ScreenStreams streams;
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    FfmpegImageFiles imageFiles;
    PosixHelperLauncher launcher;
    SystemClock clock;
    cli::MainThreadExecutor main;
    PipeWireSessions sessions;
    auto devices = findDevices(options.devices, sessions, main);
    if (!devices) {
        return cli::failed(devices.error());
    }
    TakeRecorder recorder({streams,
                           media,
                           imageFiles,
                           {**monitors, **pointer, **pointer, launcher, clock, main, nullptr,
                            helperExecutablePath(runningExecutableFolder())},
                           &sessions});
    StatusLine status;
    if (options.countdown > 0) {
        countDown(options.countdown, stopSignals, status);
    }
    const bool isHeard = cli::waitForMicrophone(*devices, [&stopSignals] {
        QThread::msleep(kMicrophonePoll);
        return !stopSignals.hasCome();
    });
    if (stopSignals.hasCome()) {
        status.show("");
        return cli::failed("Nothing was recorded: it was stopped before the start.");
    }
    if (!isHeard) {
        return cli::failed("The microphone sends nothing: " + devices->microphone->name);
    }
    if (const auto started = recorder.start(source, recordingsDirectory(), *devices); !started) {
        return cli::failed(started.error().description());
    }
    runTake(recorder, options, stopSignals, status);
    status.show("");
    return finish(recorder);
}

/// The display's number counts from 0, as `tavi sources` lists them.
Result<TakeSource, std::string> findDisplay(const ShareableContent& content, int number) {
    const auto count = static_cast<int>(content.displays.size());
    if (number < 0 || number >= count) {
        return fail(fmt::format("There is no display {}; `tavi sources` lists them.", number));
    }
    return content.displays[static_cast<std::size_t>(number)];
}

Result<TakeSource, std::string> findWindow(const ShareableContent& content, std::uint32_t id) {
    const auto found = std::find_if(content.windows.begin(), content.windows.end(),
                                    [id](const Window& window) { return window.id == id; });
    if (found == content.windows.end()) {
        return fail(fmt::format("There is no window {}; `tavi sources` lists them.", id));
    }
    if (!found->isOnScreen) {
        return fail(fmt::format("The window {} is minimized; show it first.", id));
    }
    return *found;
}

Result<TakeSource, std::string> findSource(const TakeOptions& options) {
    X11ShareableContent shareable;
    const auto content = shareable.content();
    if (!content) {
        return fail(content.error().description());
    }
    return options.window ? findWindow(*content, *options.window)
                          : findDisplay(*content, options.display);
}

int record(const TakeOptions& options) {
    cli::StopSignals stopSignals;
    const auto folder = RecorderLock::folder();
    if (!folder) {
        return cli::failed(folder.error().description());
    }
    const auto lock = RecorderLock::acquire(*folder);
    if (!lock) {
        return cli::failed(lock.error().description());
    }
    const auto source = findSource(options);
    if (!source) {
        return cli::failed(source.error());
    }
    int argumentCount = 1;
    char name[] = "tavi";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(argumentCount, arguments);
    return recordSource(*source, options, stopSignals);
}

} // namespace

void addRecordCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<TakeOptions>();
    CLI::App* command = app.add_subcommand("record", "Record one take; prints its folder");
    CLI::Option* display = command->add_option("--display", options->display,
                                               "The display's number, from `tavi sources`");
    display->type_name("N");
    command
        ->add_option("--window", options->window, "One window instead, its id from `tavi sources`")
        ->type_name("ID")
        ->excludes(display);
    command
        ->add_option("--mic", options->devices.microphone,
                     "Microphone by its name from `tavi sources`, or \"default\"")
        ->type_name("NAME");
    command
        ->add_option("--camera", options->devices.camera,
                     "Camera by its name from `tavi sources`, or \"default\"")
        ->type_name("NAME");
    command->add_option("--countdown", options->countdown, "Seconds to wait before the start")
        ->check(CLI::NonNegativeNumber)
        ->type_name("S");
    command->add_option("--duration", options->duration, "Seconds after which the take ends")
        ->check(CLI::PositiveNumber)
        ->type_name("S");
    command->callback([options, &exitCode] { exitCode = record(*options); });
}

} // namespace tavi
