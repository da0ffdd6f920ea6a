#include "cli/OpenProject.h"

#include "project/ProjectOverrides.h"
#include "project/RecordingFolder.h"

#include <fmt/format.h>

namespace tavi::cli {

namespace {

constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

constexpr std::int64_t kHighestRate = MediaTime::kPreferredTimescale; // one step of the time grid
constexpr double kSmallestSide = 16;                                  // of H.265 encoders
constexpr double kLargestSide = 16384;

} // namespace

Result<OpenTake, Failure> openTakeWithOptions(const std::string& argument,
                                              const std::vector<std::string>& assignments,
                                              MediaLibrary& media) {
    auto take = openTake(argument, media);
    if (!take) {
        return fail(Failure{kFailed, std::move(take.error())});
    }
    take->project.recordingPath = folderUrl(take->folder);
    for (const std::string& assignment : assignments) {
        if (const auto set = setProjectOption(take->project, assignment); !set) {
            return fail(Failure{kWrongUsage, set.error()});
        }
    }
    return *std::move(take);
}

Result<void, Failure> checkOutputOptions(const OpenTake& take) {
    const OutputSettings& output = take.project.outputSettings;
    if (output.fps < 1 || output.fps > kHighestRate) {
        return fail(Failure{kWrongUsage, fmt::format("outputSettings.fps is {}; it can be 1 to {}",
                                                     output.fps, kHighestRate)});
    }
    const Size size =
        resolvedOutputSize(output.resolution, output.autoAspectRatio, take.videoSize());
    const auto fits = [](double side) { return side >= kSmallestSide && side <= kLargestSide; };
    if (!fits(size.width) || !fits(size.height)) {
        return fail(Failure{
            kWrongUsage, fmt::format("The output would be {} x {} pixels; a side can have {} to {}",
                                     size.width, size.height, kSmallestSide, kLargestSide)});
    }
    return {};
}

} // namespace tavi::cli
