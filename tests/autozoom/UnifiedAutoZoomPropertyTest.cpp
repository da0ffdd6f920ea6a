#include "autozoom/UnifiedAutoZoom.h"
#include "project/Camera.h"
#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace tavi::UnifiedAutoZoom {
namespace {

using test::RandomValues;
using test::Weather;

struct Take {
    EditProject project;
    Size video;
    double duration;
    double aggressiveness;

    std::vector<ZoomKeyframe> keyframes() const {
        return generate(project, video, duration, aggressiveness);
    }
    Inputs inputs() const { return prepareInputs(project, video, duration, aggressiveness); }
};

Take randomTake(std::uint64_t seed, Weather weather) {
    RandomValues random(seed);
    static constexpr Size kVideos[]{
        {1920, 1080}, {3840, 2160}, {1512, 982}, {640, 360}, {800, 1400}};
    static constexpr Size kOutputs[]{
        {1920, 1080}, {1280, 720}, {1080, 1080}, {3000, 500}, {500, 900}};
    Take take;
    take.video = random.oneOf(kVideos);
    take.duration = random.between(1, 60);
    static constexpr double kNotable[]{0, 0.5, 0.7, 1};
    take.aggressiveness = random.chance(0.3) ? random.oneOf(kNotable) : random.fraction();
    take.project.outputSettings.resolution = random.oneOf(kOutputs);
    take.project.outputSettings.autoAspectRatio = random.chance(0.2);
    take.project.videoHeight = random.chance(0.2) ? 0 : std::floor(random.between(300, 2200));
    take.project.cursorEvents = test::randomLog(random, weather);
    return take;
}

Take anyTake(std::uint64_t seed) {
    RandomValues random(~seed);
    return randomTake(seed, test::randomWeather(random));
}

TEST(UnifiedAutoZoomProperty, keyframesAreInOrderAndApart) {
    std::size_t found = 0;
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const auto keyframes = anyTake(seed).keyframes();
        for (std::size_t i = 1; i < keyframes.size(); ++i) {
            ASSERT_GE(keyframes[i].timestamp, keyframes[i - 1].timestamp) << "seed " << seed;
            ASSERT_GE(keyframes[i].timestamp, keyframes[i - 1].endTime + 0.05) << "seed " << seed;
        }
        found += keyframes.size();
    }
    EXPECT_GT(found, test::seedCount());
}

bool isFinite(const ZoomKeyframe& k) {
    const auto finite = [](std::initializer_list<double> values) {
        return std::all_of(values.begin(), values.end(), [](double v) { return std::isfinite(v); });
    };
    return finite({k.timestamp, k.endTime, k.rect.x, k.rect.y, k.rect.width, k.rect.height,
                   k.transitionDuration}) &&
           std::all_of(k.waypoints.begin(), k.waypoints.end(),
                       [&](const ZoomWaypoint& w) {
                           return finite({w.time, w.centerX, w.centerY});
                       }) &&
           std::all_of(k.zoomCurve.begin(), k.zoomCurve.end(), [&](const ZoomCurvePoint& p) {
               return finite({p.time, p.zoomLevel});
           });
}

TEST(UnifiedAutoZoomProperty, everyNumberIsFinite) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        for (const ZoomKeyframe& k : anyTake(seed).keyframes()) {
            ASSERT_TRUE(isFinite(k)) << "seed " << seed;
        }
    }
}

TEST(UnifiedAutoZoomProperty, everyViewportIsInsideTheVideo) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Take take = anyTake(seed);
        const double slack = 1e-9 * std::max(take.video.width, take.video.height);
        for (const ZoomKeyframe& k : take.keyframes()) {
            std::vector<Point> centres{k.rect.center()};
            for (const ZoomWaypoint& w : k.waypoints) {
                centres.push_back({w.centerX, w.centerY});
            }
            for (const Point c : centres) {
                ASSERT_GE(c.x - k.rect.width * 0.5, -slack) << "seed " << seed;
                ASSERT_GE(c.y - k.rect.height * 0.5, -slack) << "seed " << seed;
                ASSERT_LE(c.x + k.rect.width * 0.5, take.video.width + slack) << "seed " << seed;
                ASSERT_LE(c.y + k.rect.height * 0.5, take.video.height + slack) << "seed " << seed;
            }
        }
    }
}

void forgetIds(std::vector<ZoomKeyframe>& keyframes) {
    for (ZoomKeyframe& k : keyframes) {
        k.id = {};
        for (ZoomCurvePoint& p : k.zoomCurve) {
            p.id = {};
        }
    }
}

TEST(UnifiedAutoZoomProperty, equalTakesGiveEqualKeyframesApartFromIds) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        auto a = anyTake(seed).keyframes();
        auto b = anyTake(seed).keyframes();
        ASSERT_TRUE(a.empty() || a[0].id != b[0].id);
        forgetIds(a);
        forgetIds(b);
        ASSERT_EQ(a, b) << "seed " << seed;
    }
}

TEST(UnifiedAutoZoomProperty, aLogGivesWhatItsSortedCopyGives) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        Take take = anyTake(seed);
        auto a = take.keyframes();
        take.project.cursorEvents = sortedByTime(take.project.cursorEvents);
        auto b = take.keyframes();
        forgetIds(a);
        forgetIds(b);
        ASSERT_EQ(a, b) << "seed " << seed;
    }
}

/// The steepest slope of smootherstep, at its middle.
constexpr double kSteepest = 1.875;

/// The most that any edge of the camera's crop can move, pixels a second, by
/// the ramps and the legs of the keyframe's path.
double speedLimit(const ZoomKeyframe& k, Size video) {
    const double ramp = std::min(k.transitionDuration, (k.endTime - k.timestamp) * 0.5);
    double level = 1;
    for (const ZoomCurvePoint& p : k.zoomCurve) {
        level = std::max(level, p.zoomLevel);
    }
    double path = 0;
    Point at = k.rect.center();
    double time = k.timestamp;
    for (const ZoomWaypoint& w : k.waypoints) {
        path = std::max(path, std::hypot(w.centerX - at.x, w.centerY - at.y) / (w.time - time));
        at = {w.centerX, w.centerY};
        time = w.time;
    }
    const double diagonal = std::hypot(video.width, video.height);
    return kSteepest * (path + (diagonal + 2 * diagonal * level) / ramp);
}

/// The moments where the camera changes its way of moving, and some others.
std::vector<double> moments(const ZoomKeyframe& k, RandomValues& random) {
    const double ramp = std::min(k.transitionDuration, (k.endTime - k.timestamp) * 0.5);
    std::vector<double> times{k.timestamp + ramp, k.endTime - ramp};
    for (const ZoomWaypoint& w : k.waypoints) {
        times.push_back(w.time);
    }
    for (const ZoomCurvePoint& p : k.zoomCurve) {
        times.push_back(p.time);
    }
    for (int n = 0; n < 10; ++n) {
        times.push_back(random.between(k.timestamp, k.endTime));
    }
    return times;
}

TEST(UnifiedAutoZoomProperty, theCameraMovesWithoutAJumpInsideAKeyframe) {
    constexpr double kStep = 1e-5;
    std::size_t checked = 0;
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Take take = randomTake(seed, Weather::calm);
        RandomValues random(seed);
        const Inputs inputs = take.inputs();
        const double aspect = inputs.base.width / inputs.base.height;
        for (const ZoomKeyframe& k : take.keyframes()) {
            const std::vector<ZoomKeyframe> one{k};
            for (const double time : moments(k, random)) {
                const double before = time - kStep * 0.5;
                const double after = time + kStep * 0.5;
                if (before < k.timestamp || after > k.endTime) {
                    continue;
                }
                const Rect a = evaluateCamera(one, before, take.video, aspect);
                const Rect b = evaluateCamera(one, after, take.video, aspect);
                const double allowed = speedLimit(k, take.video) * kStep + 1e-6;
                ASSERT_NEAR(a.x, b.x, allowed) << "seed " << seed << " time " << time;
                ASSERT_NEAR(a.y, b.y, allowed) << "seed " << seed << " time " << time;
                ASSERT_NEAR(a.width, b.width, allowed) << "seed " << seed << " time " << time;
                ++checked;
            }
        }
    }
    EXPECT_GT(checked, test::seedCount());
}

TEST(UnifiedAutoZoomProperty, heldShotsAreAsWideAsTheViewport) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Take take = randomTake(seed, Weather::calm);
        const Inputs inputs = take.inputs();
        for (const ZoomKeyframe& k : take.keyframes()) {
            if (k.endTime - k.timestamp <= 2 * k.transitionDuration) {
                continue; // no hold
            }
            const std::vector<ZoomKeyframe> one{k};
            const Rect crop = evaluateCamera(one, (k.timestamp + k.endTime) * 0.5, take.video,
                                             inputs.base.width / inputs.base.height);
            ASSERT_NEAR(crop.width, k.rect.width, 1e-9 * crop.width) << "seed " << seed;
            ASSERT_NEAR(crop.height, k.rect.height, 1e-9 * crop.height) << "seed " << seed;
        }
    }
}

} // namespace
} // namespace tavi::UnifiedAutoZoom
