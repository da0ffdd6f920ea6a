#include "cli/RenderCommand.h"

#include "cli/OpenProject.h"
#include "cli/Output.h"
#include "cli/OutputFile.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/StillFrame.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tavi {

namespace {

struct RenderOptions {
    std::string take;
    std::string output;
    double time = 0;
    std::vector<std::string> assignments;
};

int runRender(const RenderOptions& options) {
    FfmpegMediaLibrary media;
    const auto take = cli::openTakeWithOptions(options.take, options.assignments, media);
    if (!take) {
        cli::failed(take.error().message);
        return take.error().exitCode;
    }
    if (const auto checked = cli::checkOutputOptions(*take); !checked) {
        cli::failed(checked.error().message);
        return checked.error().exitCode;
    }
    if (const auto checked = cli::checkOutputFile(options.output, take->folder); !checked) {
        return cli::failed(checked.error());
    }
    const auto image = renderStillFrame(media, take->asset, take->project, options.time);
    if (!image) {
        return cli::failed(image.error());
    }
    if (const auto written = FfmpegImageFiles().writePng(options.output, *image); !written) {
        return cli::failed(written.error().description());
    }
    return 0;
}

} // namespace

void addRenderCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* command = app.add_subcommand("render", "Draw one frame of the finished film");
    command->add_option("TAKE", options->take, "Folder of the take, or its name in the library")
        ->required();
    command->add_option("--at", options->time, "Output time in seconds")->required();
    command->add_option("-o,--output", options->output, "PNG file to write")->required();
    command->add_option("--set", options->assignments,
                        "KEY=VALUE, for this run only: outputSettings.fps=30");
    command->callback([options, &exitCode] { exitCode = runRender(*options); });
}

} // namespace tavi
