#pragma once

#include "media/AssetReader.h"

#include <filesystem>
#include <string>
#include <vector>

namespace tavi::testing {

/// The sound of a track laid out on the movie's timeline, gaps as zeros.
struct Sound {
    int sampleRate = 0;
    int channels = 0;
    std::vector<float> samples;      ///< From the movie's zero on, interleaved.
    std::vector<AudioSample> pieces; ///< As they came.
    AssetReaderStatus status = AssetReaderStatus::unknown; ///< At the end.

    /// When the last sound ends, in seconds.
    double end() const;
    float at(double time, int channel = 0) const;
    /// When the loudest sample of [from, to) is, in seconds.
    double loudest(double from, double to, int channel = 0) const;
    /// Of the sine that is there in [from, to).
    double amplitude(double from, double to, int channel = 0) const;
};

/// Reads the first track of sound of a file with our reader. Fails the test when
/// it can't be opened.
Sound readSound(const std::filesystem::path& file);

/// The same by the ffmpeg command line, which is another judge of edit lists and priming.
Sound decodedByCommand(const std::filesystem::path& file, int sampleRate, int channels);

/// An expression of `t` for ffmpeg's aevalsrc: short bursts, highest in their
/// middle, at these times in seconds.
std::string bursts(const std::vector<double>& times);

/// A value of such a burst, `time` seconds away from its middle.
float burst(double time);

/// One value of `ffprobe -show_entries stream=<entry>`, of the first track of sound.
std::string probeSound(const std::filesystem::path& file, const std::string& entry);

} // namespace tavi::testing
