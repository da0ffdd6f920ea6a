#include "base/Geometry.h"
#include "cursor/CursorSmoothing.h"
#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace tavi {
namespace {

using test::RandomValues;
using test::Weather;

struct Case {
    std::vector<CursorEvent> log;
    CursorSmoothingPreset preset;
    double height;
};

Case randomCase(std::uint64_t seed, Weather weather) {
    RandomValues random(seed);
    Case c;
    c.log = test::randomLog(random, weather);
    c.preset = static_cast<CursorSmoothingPreset>(random.index(5));
    c.height = random.chance(0.1) ? 0 : std::floor(random.between(1, 4000));
    return c;
}

Case anyCase(std::uint64_t seed) {
    RandomValues random(~seed);
    return randomCase(seed, test::randomWeather(random));
}

TEST(CursorSmoothingProperty, oneSampleAnEventAtItsTimeAndFinite) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Case c = anyCase(seed);
        const auto samples = smoothCursorEvents(c.log, c.preset, c.height);
        ASSERT_EQ(samples.size(), c.log.size()) << "seed " << seed;
        for (std::size_t i = 0; i < samples.size(); ++i) {
            ASSERT_EQ(samples[i].timestamp, c.log[i].timestamp) << "seed " << seed;
            ASSERT_TRUE(std::isfinite(samples[i].x) && std::isfinite(samples[i].y))
                << "seed " << seed << " event " << i;
        }
    }
}

TEST(CursorSmoothingProperty, clicksStandOnTheRealPosition) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Case c = anyCase(seed);
        const auto samples = smoothCursorEvents(c.log, c.preset, c.height);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const CursorEvent& event = c.log[i];
            if (event.eventType == CursorEventType::leftClick ||
                event.eventType == CursorEventType::rightClick) {
                ASSERT_EQ(samples[i].x, event.x) << "seed " << seed << " event " << i;
                ASSERT_EQ(samples[i].y, c.height - event.y) << "seed " << seed << " event " << i;
            }
        }
    }
}

TEST(CursorSmoothingProperty, equalLogsGiveEqualPaths) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        const Case c = anyCase(seed);
        ASSERT_EQ(smoothCursorEvents(c.log, c.preset, c.height),
                  smoothCursorEvents(c.log, c.preset, c.height))
            << "seed " << seed;
    }
}

TEST(CursorSmoothingProperty, theMirroredLogGivesTheMirroredPath) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        Case c = randomCase(seed, Weather::calm);
        const auto samples = smoothCursorEvents(c.log, c.preset, c.height);
        for (CursorEvent& event : c.log) {
            event.timestamp = -event.timestamp;
        }
        std::reverse(c.log.begin(), c.log.end());
        const auto mirrored = smoothCursorEvents(c.log, c.preset, c.height);
        for (std::size_t i = 0; i < samples.size(); ++i) {
            const SmoothedCursorSample& other = mirrored[samples.size() - 1 - i];
            ASSERT_EQ(samples[i].x, other.x) << "seed " << seed;
            ASSERT_EQ(samples[i].y, other.y) << "seed " << seed;
        }
    }
}

struct Spring {
    double mass;
    double damping;
    double stiffness;
};

constexpr std::array<Spring, 5> kSprings{
    {{}, {3.0, 20.0, 80.0}, {1.5, 26.0, 170.0}, {1.0, 34.0, 300.0}, {0.6, 44.0, 500.0}}};

/// The spring along both axes, every millisecond one after the other.
struct PlainSpring {
    Spring spring;
    Point s;
    Point v{0, 0};

    void step(double& position, double& velocity, double target, double h) const {
        const double a =
            (spring.stiffness * (target - position) - spring.damping * velocity) / spring.mass;
        velocity = velocity + h * a;
        position = position + h * velocity;
    }

    Point visit(Point p, double gap, bool click) {
        if (gap > 0 && gap < 1.0) {
            const double steps = std::max(std::ceil(gap / 0.001), 1.0);
            const double h = gap / steps;
            for (double n = 0; n < steps; ++n) {
                step(s.x, v.x, p.x, h);
                step(s.y, v.y, p.y, h);
            }
            if (click) {
                s = p;
                v = {0, 0};
            }
            return s;
        }
        s = p;
        v = {0, 0};
        return p;
    }
};

/// The smoother without any shortcut.
std::vector<Point> plainSmoothing(const Case& c) {
    const std::size_t n = c.log.size();
    std::vector<Point> p;
    std::vector<bool> click;
    for (const CursorEvent& event : c.log) {
        p.push_back({event.x, c.height - event.y});
        click.push_back(event.eventType == CursorEventType::leftClick ||
                        event.eventType == CursorEventType::rightClick);
    }
    const Spring spring = kSprings.at(static_cast<std::size_t>(c.preset));
    std::vector<Point> f = p;
    PlainSpring forward{spring, p.front()};
    for (std::size_t i = 1; i < n; ++i) {
        f[i] = forward.visit(p[i], c.log[i].timestamp - c.log[i - 1].timestamp, click[i]);
    }
    std::vector<Point> b = p;
    PlainSpring backward{spring, p.back()};
    for (std::size_t i = n - 1; i-- > 0;) {
        b[i] = backward.visit(p[i], c.log[i + 1].timestamp - c.log[i].timestamp, click[i]);
    }
    for (std::size_t i = 0; i < n; ++i) {
        p[i] = {0.5 * (f[i].x + b[i].x), 0.5 * (f[i].y + b[i].y)};
    }
    return p;
}

/// The largest distance between the smoother and its plain form, as a part of
/// the log's largest coordinate.
double largestDifference(const Case& c) {
    const auto samples = smoothCursorEvents(c.log, c.preset, c.height);
    const auto plain = plainSmoothing(c);
    double largest = 1;
    double difference = 0;
    for (std::size_t i = 0; i < samples.size(); ++i) {
        largest = std::max({largest, std::abs(c.log[i].x), std::abs(c.height - c.log[i].y)});
        difference = std::max(
            {difference, std::abs(samples[i].x - plain[i].x), std::abs(samples[i].y - plain[i].y)});
    }
    return difference / largest;
}

// Largest difference found over 100,000 seeds: 1.1e-14 of the largest coordinate
// for calm logs, 1.8e-14 for rough ones.
TEST(CursorSmoothingProperty, agreesWithTheSpringIntegratedStepByStep) {
    for (const Weather weather : {Weather::calm, Weather::rough}) {
        double largest = 0;
        for (std::uint64_t seed = 0; seed < test::seedCount() / 2; ++seed) {
            RandomValues random(seed);
            Case c{test::randomLog(random, weather, 15),
                   static_cast<CursorSmoothingPreset>(1 + random.index(4)), 1080};
            if (!c.log.empty()) {
                const double difference = largestDifference(c);
                ASSERT_LT(difference, 1e-13) << "seed " << seed;
                largest = std::max(largest, difference);
            }
        }
        RecordProperty(weather == Weather::calm ? "calm" : "rough",
                       std::to_string(largest * 1e15) + "e-15");
    }
}

} // namespace
} // namespace tavi
