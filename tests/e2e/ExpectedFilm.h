#pragma once

#include "e2e/RealMedia.h"
#include "project/TrimState.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tavi::e2e {

/// A stretch of source time, in seconds.
struct Stretch {
    double start = 0; ///< Inclusive.
    double end = 0;   ///< Exclusive.
};

/// What survives of a source, found by asking for every stretch between two
/// neighbouring marks whether a cut covers it.
std::vector<Stretch> keptStretches(const TrimState& trim, double duration);

/// A picture that a film is to have.
struct ExpectedPicture {
    int number = 0;
    std::int64_t time = 0;     ///< In 1/600 s.
    std::optional<int> camera; ///< The number that the bubble shows; absent without one.

    bool operator==(const ExpectedPicture&) const = default;
};

/// A camera beside a video.
struct CameraSource {
    NumberedVideo video;
    double delay = 0; ///< Seconds from the video's zero to the camera's.
};

/// The pictures of a film, straight from the rule: for each stretch a grid of 1/fps,
/// on it the latest picture whose time is at or before the moment, or the stretch's
/// first; a stretch that begins behind the source's end has none. The camera is ahead:
/// of the pictures in the stretch it shows the first at or after the moment, or the
/// last. Edges of stretches, as read from the source, and times of the film are
/// rounded to 1/600 s, a stretch to at least one of them; of two pictures on the
/// same one the first counts.
std::vector<ExpectedPicture> expectedPictures(const NumberedVideo& source,
                                              const std::vector<Stretch>& kept, int fps,
                                              const std::optional<CameraSource>& camera = {});

/// Where a moment of the source is in the film; absent where it is cut away.
std::optional<double> filmTime(const std::vector<Stretch>& kept, double time);

} // namespace tavi::e2e
