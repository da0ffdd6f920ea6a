#pragma once

#include "project/RecordingMetadata.h"

#include <cmath>
#include <random>

namespace tavi::bench {

/// The log of a take as people make it: the pointer moves 62 times a second,
/// with a press, a scroll or some typing every few seconds. `events` in all; an
/// hour is 220,000. Always the same.
inline std::vector<CursorEvent> hourLog(std::size_t events = 220'000) {
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> jitter(-0.0004, 0.0004);
    std::vector<CursorEvent> log(events);
    for (std::size_t i = 0; i < events; ++i) {
        CursorEvent& event = log[i];
        const double t = static_cast<double>(i) / 61.1;
        event.timestamp = t + jitter(random);
        event.x = 960 + 700 * std::sin(t * 0.37) + 120 * std::sin(t * 2.9);
        event.y = 540 + 400 * std::cos(t * 0.29) + 60 * std::cos(t * 3.7);
        event.cursorImageId = static_cast<std::int64_t>(i / 500 % 3);
        const std::size_t phase = i % 400;
        if (phase == 0) {
            event.eventType = CursorEventType::leftMouseDown;
        } else if (phase == 8) {
            event.eventType = CursorEventType::leftMouseUp;
        } else if (phase == 90) {
            event.eventType = CursorEventType::rightClick;
        } else if (phase > 200 && phase < 230 && phase % 6 == 0) {
            event.eventType = CursorEventType::keyDown;
            event.keyCharacter = std::string(1, static_cast<char>('a' + phase % 26));
            event.keyModifiers = 0;
        } else if (phase > 300 && phase < 310) {
            event.eventType = CursorEventType::scroll;
        }
    }
    return log;
}

/// The sidecar of such a take.
inline RecordingMetadata hourMetadata(std::size_t events = 220'000) {
    RecordingMetadata metadata;
    metadata.startDate = Date{789003250.25};
    metadata.cursorEvents = hourLog(events);
    metadata.duration = metadata.cursorEvents.empty() ? 0 : metadata.cursorEvents.back().timestamp;
    metadata.screenWidth = 1920;
    metadata.screenHeight = 1080;
    metadata.cursorImageInfos = {{0, 0, 24, 24}, {8, 8, 16, 16}, {4, 12, 9, 24}};
    return metadata;
}

} // namespace tavi::bench
