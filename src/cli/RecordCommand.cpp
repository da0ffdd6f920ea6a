#include "cli/RecordCommand.h"

#include "app/program/ScreenChoice.h"
#include "capture/HelperPath.h"
#include "capture/PosixHelperLauncher.h"
#include "capture/RecorderLock.h"
#include "cli/CoreApplication.h"
#include "cli/Output.h"
#include "cli/TakeRunner.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "platform/pipewire/PipeWireDevices.h"
#include "platform/pipewire/PipeWireSessions.h"
#include "platform/portal/DesktopWakeLocks.h"
#include "platform/qt/QtExecutor.h"
#include "platform/qt/QtTimers.h"
#include "project/RecordingFolder.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <memory>
#include <sstream>

namespace tavi {

namespace {

using cli::TakeOptions;

/// Asks the system for devices only when some are wanted.
int recordWith(const TakeOptions& options, CaptureDevices* devices, CaptureSessions& sessions,
               Executor& main, cli::StopSignals& stopSignals) {
    const auto colours = std::make_shared<YuvConverter>();
    const auto screen = openScreenSystem(main, colours);
    const auto pointer = screen->pointer();
    if (!pointer) {
        return cli::failed(pointer.error().description());
    }
    FfmpegMediaLibrary media(colours);
    FfmpegImageFiles imageFiles;
    PosixHelperLauncher launcher;
    SystemClock clock;
    QtTimers timers;
    DesktopWakeLocks wakeLocks;
    cli::StatusLine line;
    cli::TerminalPanels panels(line);
    std::ostringstream messages; // the runner tells the same, where errors belong
    RecordingViewModel model(
        {.content = screen->content(),
         .screenshots = nullptr,
         .devices = devices,
         .take = {screen->streams(),
                  media,
                  imageFiles,
                  {pointer->monitors, pointer->location, pointer->images, launcher, clock, main,
                   nullptr, helperExecutablePath(runningExecutableFolder()),
                   helperArguments(!screen->seesClicks())},
                  &sessions},
         .overlay = {panels, screen->frames(), timers},
         .library = recordingsDirectory,
         .messages = messages,
         .applicationId = "",
         .countdownSeconds = std::max(options.countdown, 1),
         .consent = screen->consent(),
         .wakeLocks = &wakeLocks,
         .cursorMode = screen->cursorMode()});
    return cli::TakeRunner({model, screen->content(), devices, timers, stopSignals, line}, options)
        .run();
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
    const cli::CoreApplication application;
    QtExecutor main;
    PipeWireSessions sessions;
    if (options.devices.isEmpty()) {
        return recordWith(options, nullptr, sessions, main, stopSignals);
    }
    PipeWireDevices devices(main);
    return recordWith(options, &devices, sessions, main, stopSignals);
}

} // namespace

void addRecordCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<TakeOptions>();
    CLI::App* command = app.add_subcommand("record", "Record one take; prints its folder");
    CLI::Option* display = command->add_option("--display", options->display,
                                               "The display's number, from `tavi sources`");
    display->check(CLI::NonNegativeNumber)->type_name("N");
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
    command->add_option("--countdown", options->countdown, "Whole seconds to wait before the start")
        ->check(CLI::NonNegativeNumber)
        ->type_name("S");
    command->add_option("--duration", options->duration, "Seconds after which the take ends")
        ->check(CLI::PositiveNumber)
        ->type_name("S");
    command->callback([options, &exitCode] { exitCode = record(*options); });
}

} // namespace tavi
