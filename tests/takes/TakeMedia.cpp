#include "takes/TakeMedia.h"

#include "platform/ffmpeg/FfmpegMediaLibrary.h"
#include "render/YuvConverter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>

namespace tavi::test {

namespace {

/// Well above what an encoder makes of silence.
constexpr float kClear = 0.1F;

FfmpegMediaLibrary& library() {
    static FfmpegMediaLibrary media(std::make_shared<YuvConverter>());
    return media;
}

} // namespace

Sound soundOf(const std::filesystem::path& film) {
    const auto asset = library().openAsset(film);
    if (!asset || asset->audioTracks.empty()) {
        return {};
    }
    const AudioTrack& track = asset->audioTracks.front();
    const auto reader = library().makeAudioReader(*asset, track);
    EXPECT_TRUE(reader);
    Sound sound;
    sound.rate = track.sampleRate;
    while (const auto sample = (*reader)->copyNextSample()) {
        const double start = sample->presentationTime.seconds() * sound.rate;
        sound.samples.resize(std::max(sound.samples.size(),
                                      static_cast<std::size_t>(std::max(0.0, std::round(start)))));
        for (std::size_t i = 0; i < sample->buffer->frames(); ++i) {
            sound.samples.push_back(
                sample->buffer->samples[i * static_cast<std::size_t>(track.channels)]);
        }
    }
    return sound;
}

Tone toneOf(const Sound& sound) {
    Tone tone;
    int rises = 0;
    bool isLow = false;
    bool isHeard = false;
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        const float sample = sound.samples[i];
        rises += isLow && sample > kClear;
        isLow = sample < -kClear || (isLow && sample <= kClear);
        tone.peak = std::max(tone.peak, std::abs(sample));
        if (std::abs(sample) > kClear) {
            const double now = static_cast<double>(i) / sound.rate;
            (isHeard ? tone.longest : tone.begin) =
                isHeard ? std::max(tone.longest, now - tone.end) : now;
            tone.end = now;
            isHeard = true;
        }
    }
    tone.frequency = rises / (sound.seconds() - tone.begin);
    return tone;
}

std::vector<Burst> burstsOf(const Sound& sound) {
    constexpr double kApart = 0.2; // seconds
    std::vector<Burst> bursts;
    double energy = 0;
    double moment = 0;
    double first = 0;
    double last = -kApart;
    for (std::size_t i = 0; i < sound.samples.size(); ++i) {
        const double now = static_cast<double>(i) / sound.rate;
        if (std::abs(sound.samples[i]) <= kClear) {
            continue;
        }
        if (now - last >= kApart) {
            bursts.emplace_back();
            energy = moment = 0;
            first = now;
        }
        const double power = static_cast<double>(sound.samples[i]) * sound.samples[i];
        energy += power;
        moment += power * now;
        bursts.back() = {moment / energy, now - first};
        last = now;
    }
    return bursts;
}

void forEachPicture(const std::filesystem::path& film,
                    const std::function<void(double, const PixelBuffer&)>& look) {
    const auto asset = library().openAsset(film);
    ASSERT_TRUE(asset && !asset->videoTracks.empty()) << film;
    const auto reader =
        library().makeVideoReader(*asset, asset->videoTracks.front(), {{0, 1}, asset->duration});
    ASSERT_TRUE(reader);
    while (const auto sample = (*reader)->copyNextSample()) {
        if (sample->image) {
            look(sample->presentationTime.seconds(), *sample->image);
        }
    }
}

std::vector<double> flashesOf(const std::filesystem::path& film, int x, int y) {
    constexpr int kBright = 128;
    std::vector<double> times;
    bool wasBright = true;
    forEachPicture(film, [&](double time, const PixelBuffer& picture) {
        const bool isBright = picture.row(y)[x * PixelBuffer::kBytesPerPixel + 1] > kBright;
        if (isBright && !wasBright) {
            times.push_back(time);
        }
        wasBright = isBright;
    });
    return times;
}

} // namespace tavi::test
