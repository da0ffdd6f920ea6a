#include "cli/OutputRequest.h"

#include "cli/OutputFile.h"
#include "cursor/CursorPictures.h"
#include "platform/x11/DesktopArrow.h"
#include "project/ProjectOverrides.h"
#include "project/RecordingFolder.h"

#include <CLI/CLI.hpp>
#include <fmt/format.h>

namespace tavi::cli {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr std::int64_t kHighestRate = MediaTime::kPreferredTimescale; // one step of the time grid
constexpr double kLargestSide = 16384;

constexpr int kArrowHeight = 96; ///< Pixels: the largest that themes commonly have.

Result<void, Failure> checkOutputOptions(const OpenTake& take, double smallestSide) {
    const OutputSettings& output = take.project.outputSettings;
    if (output.fps < 1 || output.fps > kHighestRate) {
        return fail(Failure{kWrongUsage, fmt::format("outputSettings.fps is {}; it can be 1 to {}",
                                                     output.fps, kHighestRate)});
    }
    const Size size =
        resolvedOutputSize(output.resolution, output.autoAspectRatio, take.videoSize());
    const auto fits = [&](double side) { return side >= smallestSide && side <= kLargestSide; };
    if (!fits(size.width) || !fits(size.height)) {
        return fail(Failure{
            kWrongUsage, fmt::format("The output would be {} x {} pixels; a side can have {} to {}",
                                     size.width, size.height, smallestSide, kLargestSide)});
    }
    return {};
}

} // namespace

void addAssignments(CLI::App& command, std::vector<std::string>& assignments) {
    command.add_option("--set", assignments, "KEY=VALUE, for this run only: outputSettings.fps=30")
        ->allow_extra_args(false);
}

Result<OpenTake, Failure> openForOutput(const OutputRequest& request, MediaLibrary& media) {
    auto take = openTake(request.take, media);
    if (!take) {
        return fail(Failure{kFailed, std::move(take.error())});
    }
    take->project.recordingPath = folderUrl(take->folder);
    for (const std::string& assignment : request.assignments) {
        if (const auto set = setProjectOption(take->project, assignment); !set) {
            return fail(Failure{kWrongUsage, set.error()});
        }
    }
    if (auto checked = checkOutputOptions(*take, request.smallestSide); !checked) {
        return fail(std::move(checked.error()));
    }
    if (auto checked = checkOutputFile(request.output, take->folder); !checked) {
        return fail(Failure{kFailed, std::move(checked.error())});
    }
    setDesktopArrow(desktopArrow(kArrowHeight));
    return *std::move(take);
}

} // namespace tavi::cli
