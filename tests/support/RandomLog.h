#pragma once

#include "project/CursorEvent.h"

#include <cstdint>
#include <cstdlib>
#include <iterator>
#include <limits>
#include <random>
#include <string>
#include <vector>

namespace tavi::test {

/// How many seeds a property is tried with: 10,000, a tenth under a sanitizer;
/// the environment variable TAVI_TEST_SEEDS overrides both.
inline std::uint64_t seedCount() {
    if (const char* text = std::getenv("TAVI_TEST_SEEDS")) {
        return std::strtoull(text, nullptr, 10);
    }
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    return 1000;
#else
    return 10000;
#endif
}

/// What a random log may hold. Every value is finite in all of them.
enum class Weather {
    calm,    ///< Rising times, positions on or near the screen.
    rough,   ///< Equal and backward times, positions up to 1e12.
    extreme, ///< As rough, a few values as large as doubles go.
};

/// Random values of one seed; equal seeds give equal values on every platform.
class RandomValues {
public:
    explicit RandomValues(std::uint64_t seed) : m_bits(seed) {}

    /// In 0..1, 1 excluded.
    double fraction() { return static_cast<double>(m_bits() >> 11) * 0x1p-53; }
    double between(double low, double high) { return low + (high - low) * fraction(); }
    /// In 0..count-1.
    std::size_t index(std::size_t count) { return static_cast<std::size_t>(m_bits() % count); }
    bool chance(double probability) { return fraction() < probability; }

    template<typename Items>
    auto oneOf(const Items& items) {
        return *std::next(std::begin(items), static_cast<std::ptrdiff_t>(index(std::size(items))));
    }

private:
    std::mt19937_64 m_bits;
};

/// Mostly calm weather, some rough, a little extreme.
inline Weather randomWeather(RandomValues& random) {
    const double w = random.fraction();
    return w < 0.5 ? Weather::calm : w < 0.9 ? Weather::rough : Weather::extreme;
}

/// The distance in time to the next event, seconds: pointer ticks, pauses around
/// the thresholds of smoothing and analysis, and, in bad weather, none or back.
inline double randomGap(RandomValues& random, Weather weather) {
    static constexpr double kNotable[]{0.001, 0.016, 0.3,  0.45, 0.6,  0.8, 0.999, 1.0,
                                       1.2,   1.5,   1.85, 2.0,  2.25, 2.5, 3.0,   7.5};
    const double kind = random.fraction();
    if (kind < 0.6) {
        return random.between(0.004, 0.05);
    }
    if (kind < 0.75) {
        return random.between(0.05, 1.2);
    }
    if (kind < 0.9 || weather == Weather::calm) {
        return random.oneOf(kNotable);
    }
    static constexpr double kRough[]{0, 0, 1e-9, -0.001, -0.5, -4};
    return random.oneOf(kRough);
}

inline double randomCoordinate(RandomValues& random, Weather weather) {
    constexpr double kLargest = std::numeric_limits<double>::max();
    if (weather == Weather::extreme && random.chance(0.1)) {
        return random.chance(0.5) ? kLargest : -kLargest;
    }
    if (weather != Weather::calm && random.chance(0.1)) {
        return random.between(-1e12, 1e12);
    }
    return random.between(-50, 1970);
}

inline void makeKeyPress(CursorEvent& event, RandomValues& random) {
    static const std::string kKeys[]{"a", "Return", "Space", "ß", "é", "7", "←", ""};
    event.eventType = CursorEventType::keyDown;
    if (random.chance(0.9)) {
        event.keyCharacter = random.oneOf(kKeys);
    }
    if (random.chance(0.5)) {
        event.keyModifiers = random.index(16) << 17;
    }
}

inline CursorEvent randomEvent(RandomValues& random, Weather weather) {
    CursorEvent event;
    event.x = randomCoordinate(random, weather);
    event.y = randomCoordinate(random, weather);
    event.cursorImageId = static_cast<std::int64_t>(random.index(5)) - 1;
    event.eventType = static_cast<CursorEventType>(
        random.chance(0.5) ? 0 : random.index(RawValues<CursorEventType>::names.size()));
    if (event.eventType == CursorEventType::keyDown) {
        makeKeyPress(event, random);
    }
    return event;
}

/// A log of up to `most` events, one in eight of a single event, some of none.
/// Bursts of typing at one place come now and then.
inline std::vector<CursorEvent> randomLog(RandomValues& random, Weather weather,
                                          std::size_t most = 60) {
    const std::size_t count = random.chance(0.125) ? 1 : random.index(most + 1);
    std::vector<CursorEvent> log;
    double time = random.between(0, 3);
    while (log.size() < count) {
        CursorEvent event = randomEvent(random, weather);
        event.timestamp = time;
        log.push_back(event);
        for (std::size_t n = random.chance(0.05) ? random.index(12) : 0;
             n > 0 && log.size() < count; --n) {
            makeKeyPress(event, random);
            event.timestamp += random.between(0.05, 0.85);
            log.push_back(event);
        }
        time = log.back().timestamp + randomGap(random, weather);
    }
    if (weather == Weather::extreme && !log.empty() && random.chance(0.3)) {
        log[random.index(log.size())].timestamp = std::numeric_limits<double>::max();
    }
    return log;
}

} // namespace tavi::test
