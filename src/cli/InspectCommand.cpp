#include "cli/InspectCommand.h"

#include "cli/Output.h"
#include "cli/TakeInspection.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tavi {

namespace {

int runInspect(const std::string& argument, const cli::InspectionRequest& request) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    const auto take = cli::openTake(argument, media);
    if (!take) {
        return cli::failed(take.error());
    }
    const auto text = cli::inspectTake(*take, request);
    if (!text) {
        return cli::failed("The take's numbers can't be printed, a value " +
                           text.error().description() + ": " + take->folder.string());
    }
    cli::printLine(*text);
    return 0;
}

} // namespace

void addInspectCommand(CLI::App& app, int& exitCode) {
    auto argument = std::make_shared<std::string>();
    auto request = std::make_shared<cli::InspectionRequest>();
    CLI::App* command =
        app.add_subcommand("inspect", "Print what the engine computes of a take, as JSON");
    command->add_option("TAKE", *argument, "Folder of the take, or its name in the library")
        ->required();
    command->add_option("--at", request->times, "Times in seconds: T,T,...")
        ->delimiter(',')
        ->allow_extra_args(false);
    command->add_flag("--output-time", request->inOutputTime,
                      "Times are output times, and everything is moved to output time first");
    command->add_option("--aggressiveness", request->aggressiveness,
                        "Take the keyframes that the analysis would generate");
    command->callback(
        [argument, request, &exitCode] { exitCode = runInspect(*argument, *request); });
}

} // namespace tavi
