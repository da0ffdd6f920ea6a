#include "render/FrameComposer.h"
#include "support/Pictures.h"
#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using test::plainPicture;
using test::RandomValues;
using test::shared;

constexpr double kInfinity = std::numeric_limits<double>::infinity();

/// What no slider gives, and what files can hold all the same.
constexpr double kHostile[]{NAN,  kInfinity, -kInfinity, 0,     -1, -0.5, 0.5, 0.49999, 0.500001,
                            1e-9, 1e9,       -1e300,     1e300, 13, 0.03, 40,  2000};

constexpr Size kOutputs[]{{2, 2}, {16, 9}, {33, 17}, {320, 180}, {180, 320}, {1, 300}};

/// Spoils a value now and then.
void spoil(RandomValues& random, double& value) {
    if (random.chance(0.4)) {
        value = random.oneOf(kHostile);
    }
}

void spoilAppearance(RandomValues& random, AppearanceSettings& a) {
    a.backgroundStyle = static_cast<BackgroundStyle>(random.index(6));
    a.gradientPresetIndex = static_cast<std::int64_t>(random.index(9)) * 1'000'003 - 4'000'000;
    a.animateBackground = random.chance(0.5);
    a.shadowEnabled = random.chance(0.5);
    for (double* value : {&a.blurRadius, &a.padding, &a.cornerRadius, &a.shadowRadius,
                          &a.shadowOpacity, &a.solidColor.red, &a.solidColor.green}) {
        spoil(random, *value);
    }
}

void spoilOverlays(RandomValues& random, EditProject& project) {
    CursorSettings& cursor = project.cursorSettings;
    cursor.cursorStyle = static_cast<CursorStyle>(random.index(3));
    cursor.smoothingPreset = static_cast<CursorSmoothingPreset>(random.index(5));
    cursor.showClickEffect = random.chance(0.5);
    cursor.showKeystrokes = random.chance(0.5);
    spoil(random, cursor.cursorSize);
    spoil(random, cursor.keystrokeDisplayDuration);
    CameraSettings& camera = project.cameraSettings;
    camera.enabled = true;
    camera.position = static_cast<CameraPosition>(random.index(4));
    for (double* value : {&camera.sizeFraction, &camera.marginFraction, &camera.borderWidth,
                          &camera.cornerRadius, &camera.borderColor.alpha}) {
        spoil(random, *value);
    }
    project.cursorImages = {shared(PixelBuffer()), nullptr,
                            shared(plainPicture(3, 5, {0, 0, 9, 255}))};
    project.cursorImageInfos = {{0, 0, 0, 0}, {NAN, NAN, NAN, NAN}, {1e300, -4, 3, 5}};
}

void spoilLog(RandomValues& random, EditProject& project) {
    for (int i = 0; i < 12; ++i) {
        CursorEvent event{i * 0.1, random.between(-50, 400), random.between(-50, 300),
                          static_cast<CursorEventType>(random.index(6)),
                          static_cast<std::int64_t>(random.index(9)) - 3};
        spoil(random, event.x);
        event.keyCharacter = "\xE2\x8C\x98";
        project.cursorEvents.push_back(event);
    }
    ZoomKeyframe keyframe;
    keyframe.timestamp = 0;
    keyframe.endTime = 2;
    keyframe.rect = {50, 20, 100, 60};
    for (double* value : {&keyframe.rect.x, &keyframe.rect.y, &keyframe.rect.width,
                          &keyframe.transitionDuration, &keyframe.endTime}) {
        spoil(random, *value);
    }
    project.keyframes = {keyframe};
}

/// Pixels that would let something below the frame through, or are no
/// premultiplied colour.
int translucentPixels(const PixelBuffer& image) {
    int count = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            count += image.row(y)[4 * x + 3] != 255;
        }
    }
    return count;
}

TEST(HostileOptions, everyFrameIsProducedAndOpaque) {
    const PixelBufferPtr videos[]{shared(plainPicture(320, 180, {90, 80, 70, 255})),
                                  shared(plainPicture(1, 1, {1, 2, 3, 255}))};
    const PixelBufferPtr cameras[]{nullptr, shared(plainPicture(64, 48, {9, 99, 9, 255})),
                                   shared(PixelBuffer())};
    const std::uint64_t seeds = test::seedCount() / 10;
    for (std::uint64_t seed = 0; seed < seeds; ++seed) {
        SCOPED_TRACE(seed);
        RandomValues random(seed);
        EditProject project;
        project.outputSettings = {random.oneOf(kOutputs), 60, random.chance(0.3)};
        project.videoHeight = 180;
        spoilAppearance(random, project.appearanceSettings);
        spoilOverlays(random, project);
        spoilLog(random, project);
        const PixelBufferPtr video = random.oneOf(videos);
        const Size size{static_cast<double>(video->width()), static_cast<double>(video->height())};
        FrameComposer composer(project, makeOutputTimeline(project, 2), size);
        const FrameSize frame = composer.frameSize();
        PixelBuffer out(frame.width, frame.height);
        for (const double time : {0.0, 0.55, 1.2}) {
            composer.composeFrame(video, random.oneOf(cameras), time, out);
            ASSERT_EQ(translucentPixels(out), 0);
        }
    }
}

TEST(HostileOptions, largestOutputOfTheOptionsIsProduced) {
    EditProject project;
    project.outputSettings = {{7680, 4320}, 60, false};
    project.appearanceSettings.shadowEnabled = true;
    FrameComposer composer(project, makeOutputTimeline(project, 2), {320, 180});
    PixelBuffer out(7680, 4320);
    composer.composeFrame(shared(plainPicture(320, 180, {90, 80, 70, 255})), nullptr, 0, out);
    EXPECT_EQ(translucentPixels(out), 0);
}

} // namespace
} // namespace tavi
