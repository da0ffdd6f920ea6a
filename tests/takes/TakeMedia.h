#pragma once

#include <cstddef>
#include <filesystem>
#include <functional>
#include <vector>

namespace tavi {
class PixelBuffer;
}

namespace tavi::test {

/// The first channel of a film's sound.
struct Sound {
    std::vector<float> samples; ///< From the film's zero on, gaps filled with silence.
    double rate = 0;            ///< Hz; 0: the film has no sound.

    double seconds() const { return static_cast<double>(samples.size()) / rate; }
};

Sound soundOf(const std::filesystem::path& film);

/// A tone by its rises from well below to well above zero.
struct Tone {
    double frequency = 0; ///< Hz, from its begin to the end of the film.
    float peak = 0;
    double begin = 0;   ///< When it is first heard, seconds.
    double end = 0;     ///< When it is last heard, seconds.
    double longest = 0; ///< Of the silences between, seconds.
};

Tone toneOf(const Sound& sound);

/// Bursts of sound that are far apart.
struct Burst {
    double middle = 0; ///< Of its energy, seconds.
    double length = 0; ///< Seconds in which it is clearly heard.
};

std::vector<Burst> burstsOf(const Sound& sound);

/// Calls `look` with the time in seconds and the picture of every frame.
void forEachPicture(const std::filesystem::path& film,
                    const std::function<void(double, const PixelBuffer&)>& look);

/// When a pixel turns bright, seconds.
std::vector<double> flashesOf(const std::filesystem::path& film, int x, int y);

} // namespace tavi::test
