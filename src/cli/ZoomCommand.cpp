#include "cli/ZoomCommand.h"

#include "autozoom/UnifiedAutoZoom.h"
#include "cli/OpenTake.h"
#include "cli/Output.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "project/EditProjectJson.h"
#include "project/RecordingFolder.h"
#include "project/TakeLoader.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

#include <memory>

namespace tavi {

namespace {

struct ZoomOptions {
    std::string take;
    std::optional<double> aggressiveness;
    bool dryRun = false;
};

int printKeyframes(const std::vector<ZoomKeyframe>& keyframes) {
    JsonWriter json;
    write(json, keyframes);
    const auto text = json.finish();
    if (!text) {
        return cli::failed("The keyframes can't be printed: " + text.error().description());
    }
    cli::printLine(*text);
    return 0;
}

int runZoom(const ZoomOptions& options) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    auto take = cli::openTake(options.take, media);
    if (!take) {
        return cli::failed(take.error());
    }
    const double aggressiveness =
        options.aggressiveness.value_or(take->project.autoZoomSettings.aggressiveness);
    take->project.keyframes = UnifiedAutoZoom::generate(take->project, take->videoSize(),
                                                        take->duration(), aggressiveness);
    if (options.dryRun) {
        return printKeyframes(take->project.keyframes);
    }
    const auto file = take->folder / take::kProject;
    if (!saveProject(take->project, take->folder)) {
        return cli::failed("The keyframes can't be saved, the file can't be written: " +
                           file.string());
    }
    cli::printLine(
        fmt::format("{} keyframes in {}", take->project.keyframes.size(), file.string()));
    return 0;
}

} // namespace

void addZoomCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<ZoomOptions>();
    CLI::App* command = app.add_subcommand("zoom", "Generate zooms from what the pointer did");
    command->add_option("TAKE", options->take, "Folder of the take, or its name in the library")
        ->required();
    command->add_option("--aggressiveness", options->aggressiveness,
                        "From 0 (calm) to 1 (eager); the take's own setting when not given");
    command->add_flag("--dry-run", options->dryRun, "Print the keyframes and change nothing");
    command->callback([options, &exitCode] { exitCode = runZoom(*options); });
}

} // namespace tavi
