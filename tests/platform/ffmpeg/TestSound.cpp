#include "platform/ffmpeg/TestSound.h"

#include "platform/ffmpeg/TestMedia.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <numbers>

namespace tavi::testing {

namespace fs = std::filesystem;

namespace {

constexpr double kWidth = 0.002; ///< Of a burst, seconds.
constexpr double kPitch = 1000;  ///< Of its tone, Hz.

/// Puts a piece where its time says; what it covers must be still empty.
void place(Sound& sound, const AudioSample& piece) {
    const auto& samples = piece.buffer->samples;
    EXPECT_EQ(piece.buffer->sampleRate, sound.sampleRate);
    EXPECT_EQ(piece.buffer->channels, sound.channels);
    const std::int64_t start = piece.presentationTime.rescaled(sound.sampleRate).value;
    const std::int64_t first = start * sound.channels;
    EXPECT_GE(first, static_cast<std::int64_t>(sound.samples.size())) << "overlap";
    if (first >= static_cast<std::int64_t>(sound.samples.size())) {
        sound.samples.resize(static_cast<std::size_t>(first));
        sound.samples.insert(sound.samples.end(), samples.begin(), samples.end());
    }
}

} // namespace

double Sound::end() const {
    return static_cast<double>(samples.size()) / channels / sampleRate;
}

float Sound::at(double time, int channel) const {
    const auto index =
        static_cast<std::size_t>(std::llround(time * sampleRate) * channels + channel);
    return index < samples.size() ? samples[index] : 0;
}

double Sound::loudest(double from, double to, int channel) const {
    const std::int64_t end = std::llround(to * sampleRate);
    std::int64_t best = std::llround(from * sampleRate);
    const auto level = [&](std::int64_t frame) {
        return std::abs(at(static_cast<double>(frame) / sampleRate, channel));
    };
    for (std::int64_t frame = best; frame < end; ++frame) {
        best = level(frame) > level(best) ? frame : best;
    }
    return static_cast<double>(best) / sampleRate;
}

double Sound::amplitude(double from, double to, int channel) const {
    double sum = 0;
    const std::int64_t first = std::llround(from * sampleRate);
    const std::int64_t last = std::llround(to * sampleRate);
    for (std::int64_t frame = first; frame < last; ++frame) {
        const double value = at(static_cast<double>(frame) / sampleRate, channel);
        sum += value * value;
    }
    return std::sqrt(2 * sum / static_cast<double>(last - first));
}

Sound readSound(const fs::path& file) {
    FfmpegMediaLibrary library = mediaLibrary();
    Sound sound;
    const auto asset = library.openAsset(file);
    if (!asset || asset->audioTracks.empty()) {
        ADD_FAILURE() << (asset ? "no track of sound" : asset.error().description());
        return sound;
    }
    const AudioTrack& track = asset->audioTracks.front();
    sound.sampleRate = track.sampleRate;
    sound.channels = track.channels;
    const auto reader = library.makeAudioReader(*asset, track);
    if (!reader) {
        ADD_FAILURE() << reader.error().description();
        return sound;
    }
    while (auto piece = (*reader)->copyNextSample()) {
        place(sound, *piece);
        sound.pieces.push_back(std::move(*piece));
    }
    sound.status = (*reader)->status();
    return sound;
}

Sound decodedByCommand(const fs::path& file, int sampleRate, int channels) {
    const fs::path raw = freshPath("decoded.f32");
    const std::string command = fmt::format(
        "timeout 120 ffmpeg -nostdin -v error -y -copyts -i '{}' -map 0:a:0 -af aresample=async=1:"
        "first_pts=0 -f f32le -ar {} -ac {} '{}' </dev/null",
        file.string(), sampleRate, channels, raw.string());
    EXPECT_TRUE(run(command)) << command;
    Sound sound{sampleRate, channels, {}, {}, AssetReaderStatus::completed};
    sound.samples.resize(fs::file_size(raw) / sizeof(float));
    std::ifstream stream(raw, std::ios::binary);
    stream.read(reinterpret_cast<char*>(sound.samples.data()),
                static_cast<std::streamsize>(sound.samples.size() * sizeof(float)));
    return sound;
}

std::string bursts(const std::vector<double>& times) {
    std::string sum = "0";
    for (const double time : times) {
        sum += fmt::format("+0.8*exp(-pow((t-{0})/{1}\\,2))*cos(2*PI*{2}*(t-{0}))", time, kWidth,
                           kPitch);
    }
    return sum;
}

float burst(double time) {
    const double shape = std::exp(-(time / kWidth) * (time / kWidth));
    return static_cast<float>(0.8 * shape * std::cos(2 * std::numbers::pi * kPitch * time));
}

std::string probeSound(const fs::path& file, const std::string& entry) {
    return outputOf(fmt::format("ffprobe -v error -select_streams a:0 -show_entries stream={} "
                                "-of default=nw=1:nk=1 '{}' | head -1",
                                entry, file.string()));
}

} // namespace tavi::testing
