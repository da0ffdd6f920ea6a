// A sanitizer keeps what was freed: there memory says nothing of the composer.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

#include "render/FrameComposer.h"
#include "support/Pictures.h"

#include <gtest/gtest.h>

#include <fstream>
#include <unistd.h>

namespace tavi {
namespace {

constexpr Size kSize{320, 180};
constexpr int kWarmFrames = 200;
constexpr int kAllFrames = 2000;

/// What an allocator may keep to itself besides. A frame has 230 kB: losing one in
/// fifty frames would show.
constexpr long kAllowance = 4L << 20;

/// Bytes of this process that are in memory; 0 where the system doesn't tell.
long residentBytes() {
    long total = 0;
    long resident = 0;
    std::ifstream("/proc/self/statm") >> total >> resident;
    return resident * sysconf(_SC_PAGESIZE);
}

/// Everything that is made anew as the camera moves: crop, corners, pointer, blur.
EditProject movingProject(BackgroundStyle background, double cornerRadius) {
    EditProject project;
    project.appearanceSettings.backgroundStyle = background;
    project.appearanceSettings.cornerRadius = cornerRadius;
    project.appearanceSettings.shadowEnabled = true;
    project.appearanceSettings.padding = 0.05;
    project.outputSettings.resolution = kSize;
    project.videoHeight = static_cast<int>(kSize.height);
    project.cursorEvents = {{0, 10, 10, CursorEventType::move},
                            {60, 300, 170, CursorEventType::move}};
    ZoomKeyframe keyframe;
    keyframe.endTime = 60;
    keyframe.rect = {10.3, 5.7, 180, 101.25};
    keyframe.waypoints = {{30, 200, 100}, {60, 90, 60}};
    project.keyframes = {keyframe};
    return project;
}

struct MemoryCase {
    BackgroundStyle background;
    double cornerRadius;
};

class FrameComposerMemory : public testing::TestWithParam<MemoryCase> {};

TEST_P(FrameComposerMemory, doesNotGrowWithTheNumberOfFrames) {
    ASSERT_GT(residentBytes(), 0) << "/proc/self/statm tells nothing";
    const EditProject project = movingProject(GetParam().background, GetParam().cornerRadius);
    FrameComposer composer(project, makeOutputTimeline(project, 60), kSize);
    PixelBuffer out(composer.frameSize().width, composer.frameSize().height);
    long warm = 0;
    for (int n = 0; n < kAllFrames; ++n) {
        const auto frame =
            test::shared(test::plainPicture(out.width(), out.height(), {n % 256, 0, 0, 255}));
        composer.composeFrame(frame, nullptr, n * 60.0 / kAllFrames, out);
        warm = n + 1 == kWarmFrames ? residentBytes() : warm;
    }
    const long grown = residentBytes() - warm;
    RecordProperty("grownBytes", std::to_string(grown));
    EXPECT_LE(grown, kAllowance);
}

INSTANTIATE_TEST_SUITE_P(Looks, FrameComposerMemory,
                         testing::Values(MemoryCase{BackgroundStyle::gradient, 13},
                                         MemoryCase{BackgroundStyle::gradient, 0},
                                         MemoryCase{BackgroundStyle::blur, 13}));

} // namespace
} // namespace tavi

#endif
