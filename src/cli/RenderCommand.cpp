#include "cli/RenderCommand.h"

#include "cli/Output.h"
#include "cli/OutputRequest.h"
#include "platform/ffmpeg/FfmpegImageFiles.h"
#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/StillFrame.h"
#include "render/YuvConverter.h"

#include <CLI/CLI.hpp>

#include <memory>

namespace tavi {

namespace {

struct RenderOptions {
    cli::OutputRequest request;
    double time = 0;
};

int runRender(const RenderOptions& options) {
    FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    const auto take = cli::openForOutput(options.request, media);
    if (!take) {
        cli::failed(take.error().message);
        return take.error().exitCode;
    }
    const auto image = renderStillFrame(media, take->asset, take->project, options.time);
    if (!image) {
        return cli::failed(image.error());
    }
    if (const auto written = FfmpegImageFiles().writePng(options.request.output, *image);
        !written) {
        return cli::failed(written.error().description());
    }
    return 0;
}

} // namespace

void addRenderCommand(CLI::App& app, int& exitCode) {
    auto options = std::make_shared<RenderOptions>();
    CLI::App* command = app.add_subcommand("render", "Draw one frame of the finished film");
    cli::OutputRequest& request = options->request;
    command->add_option("TAKE", request.take, "Folder of the take, or its name in the library")
        ->required();
    command->add_option("-o,--output", request.output, "PNG file to write")->required();
    cli::addAssignments(*command, request.assignments);
    command->add_option("--at", options->time, "Output time in seconds")->required();
    command->callback([options, &exitCode] { exitCode = runRender(*options); });
}

} // namespace tavi
