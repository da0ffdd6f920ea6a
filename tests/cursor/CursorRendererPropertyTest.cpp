#include "cursor/CursorRenderer.h"
#include "cursor/Keystrokes.h"
#include "support/RandomLog.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavi {
namespace {

using test::RandomValues;

CursorRenderer randomRenderer(RandomValues& random, test::Weather weather) {
    CursorSettings settings;
    settings.smoothingPreset = static_cast<CursorSmoothingPreset>(random.index(5));
    settings.showClickEffect = true;
    settings.keystrokeDisplayDuration = random.chance(0.1) ? 0 : random.between(0.1, 6);
    return CursorRenderer::make(test::randomLog(random, weather), 1080, settings);
}

/// A moment near the log, now and then exactly at an event.
double randomMoment(RandomValues& random, const CursorRenderer& renderer) {
    if (renderer.events.empty() || random.chance(0.5)) {
        return random.between(-2, 30);
    }
    const double offset = random.chance(0.5) ? 0 : random.between(-0.4, 0.4);
    return renderer.events[random.index(renderer.events.size())].timestamp + offset;
}

TEST(CursorRendererProperty, everyAnswerIsFinite) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        RandomValues random(seed);
        const auto renderer = randomRenderer(random, test::randomWeather(random));
        for (int n = 0; n < 10; ++n) {
            const double time = randomMoment(random, renderer);
            const auto position = renderer.position(time);
            ASSERT_EQ(position.has_value(), !renderer.events.empty()) << "seed " << seed;
            ASSERT_TRUE(!position || (std::isfinite(position->x) && std::isfinite(position->y)))
                << "seed " << seed << " time " << time;
            for (const auto& effect : renderer.clickEffects(time)) {
                ASSERT_GE(effect.progress, 0) << "seed " << seed;
                ASSERT_LT(effect.progress, 1) << "seed " << seed;
            }
        }
    }
}

TEST(CursorRendererProperty, theRipplesAreThoseOfAScanOfTheLog) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        RandomValues random(seed);
        const auto renderer = randomRenderer(random, test::randomWeather(random));
        const double time = randomMoment(random, renderer);
        std::vector<double> expected;
        for (const CursorEvent& event : renderer.events) {
            const double age = time - event.timestamp;
            const bool click = event.eventType == CursorEventType::leftClick ||
                               event.eventType == CursorEventType::rightClick;
            if (click && age >= 0 && age < 0.35) {
                expected.insert(expected.end(), {event.x, event.y, age / 0.35});
            }
        }
        std::vector<double> found;
        for (const auto& effect : renderer.clickEffects(time)) {
            found.insert(found.end(), {effect.position.x, effect.position.y, effect.progress});
        }
        ASSERT_EQ(found, expected) << "seed " << seed;
    }
}

TEST(CursorRendererProperty, recentKeyPressesMakeTheChipsOfTheWholeLog) {
    std::size_t chips = 0;
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        RandomValues random(seed);
        const auto renderer = randomRenderer(random, test::randomWeather(random));
        const double lifetime = renderer.settings.keystrokeDisplayDuration;
        const double time = randomMoment(random, renderer);
        const auto expected = visibleKeystrokes(renderer.events, time, lifetime);
        ASSERT_EQ(visibleKeystrokes(renderer.recentKeyPresses(time), time, lifetime), expected)
            << "seed " << seed;
        chips += expected.size();
    }
    EXPECT_GT(chips, test::seedCount() / 10);
}

TEST(CursorRendererProperty, betweenTwoEventsInOrderThePointerIsBetweenTheirPoints) {
    for (std::uint64_t seed = 0; seed < test::seedCount(); ++seed) {
        RandomValues random(seed);
        const auto renderer = randomRenderer(random, test::Weather::calm);
        if (renderer.events.size() < 2) {
            continue;
        }
        const std::size_t i = random.index(renderer.events.size() - 1);
        const auto& a = renderer.smoothedSamples[i];
        const auto& b = renderer.smoothedSamples[i + 1];
        const double time = random.between(a.timestamp, b.timestamp);
        const auto p = renderer.position(time);
        ASSERT_TRUE(p);
        ASSERT_GE(p->x, std::min(a.x, b.x) - 1e-9) << "seed " << seed;
        ASSERT_LE(p->x, std::max(a.x, b.x) + 1e-9) << "seed " << seed;
        ASSERT_EQ(renderer.cursorImageId(time), renderer.events[i].cursorImageId)
            << "seed " << seed;
    }
}

} // namespace
} // namespace tavi
