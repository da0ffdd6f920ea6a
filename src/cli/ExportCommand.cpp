#include "cli/ExportCommand.h"

#include "cli/MainThread.h"
#include "cli/Output.h"
#include "cli/OutputRequest.h"
#include "cli/ProgressBar.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "project/RecordingFolder.h"
#include "render/VideoExportService.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>

#include <memory>
#include <thread>

namespace tavi {

namespace {

/// Runs the export of an open take with progress and cancellation by signal.
Result<ExportReport, ExportFailure> exportTake(const cli::OpenTake& take, MediaLibrary& media,
                                               const std::string& output) {
    const cli::StopSignals stop;
    const SystemClock clock;
    VideoExportService* running = nullptr;
    const auto obeySignals = [&] {
        if (stop.hasCome()) {
            running->isCancelled = true;
        }
    };
    VideoExportService service(media, clock, exportLogFile(), [&](std::chrono::nanoseconds time) {
        std::this_thread::sleep_for(time);
        obeySignals();
    });
    running = &service;
    cli::ProgressBar bar;
    return service.exportProject(take.project, output, [&](double share) {
        bar.update(share);
        obeySignals();
    });
}

int report(const ExportReport& result, const std::string& output) {
    if (result.writerError) {
        return cli::failed(result.writerError->description());
    }
    if (!result.hasFile()) {
        return cli::failed("Nothing was exported, no kept part of the take holds a picture: " +
                           output);
    }
    if (result.isSourceDamaged) {
        cli::failed(
            "Warning: a part of the take's video is damaged; a picture stands still there.");
    }
    if (result.isSoundDamaged) {
        cli::failed(
            "Warning: the take's sound can't be read to its end; the film is silent there.");
    }
    cli::printLine(output);
    return 0;
}

int runExport(const cli::OutputRequest& request) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    const auto take = cli::openForOutput(request, media);
    if (!take) {
        cli::failed(take.error().message);
        return take.error().exitCode;
    }
    const auto result = exportTake(*take, media, request.output);
    if (!result) {
        const auto* own = std::get_if<ExportError>(&result.error());
        const bool isCutAway = own && *own == ExportError::noVideoTrack; // there is a track
        return cli::failed(
            description(result.error()) +
            (isCutAway ? " Trim and cuts leave nothing of " + take->folder.string() : ""));
    }
    return report(*result, request.output);
}

} // namespace

void addExportCommand(CLI::App& app, int& exitCode) {
    auto request = std::make_shared<cli::OutputRequest>();
    CLI::App* command = app.add_subcommand("export", "Make the finished film of a take");
    cli::addOutputOptions(*command, *request, "MP4 file to write");
    command->callback([request, &exitCode] { exitCode = runExport(*request); });
}

} // namespace tavi
