#include "platform/ffmpeg/TestMedia.h"
#include "platform/ffmpeg/TestSound.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <csignal>
#include <functional>
#include <numbers>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Status = AssetWriterStatus;
using Wave = std::function<float(double)>; ///< A value by its time in seconds.

constexpr double kMillisecond = 0.001;
constexpr int kWidth = kPictureWidth;
constexpr int kHeight = kPictureHeight;
constexpr int kFrames = AudioReader::kFramesPerBuffer;

/// `frames` moments of a wave from `start` (seconds) on, the same on every channel.
AudioBufferPtr soundOf(const Wave& wave, double start, int frames, int sampleRate = 44100,
                       int channels = 1) {
    auto buffer = std::make_shared<AudioBuffer>();
    buffer->sampleRate = sampleRate;
    buffer->channels = channels;
    for (int i = 0; i < frames; ++i) {
        const float value = wave(start + static_cast<double>(i) / sampleRate);
        buffer->samples.insert(buffer->samples.end(), static_cast<std::size_t>(channels), value);
    }
    return buffer;
}

Wave burstsAt(std::vector<double> times) {
    return [times = std::move(times)](double time) {
        float sum = 0;
        for (const double at : times) {
            sum += std::abs(time - at) < 0.02 ? burst(time - at) : 0.0F;
        }
        return sum;
    };
}

Wave tone(double pitch, double amplitude) {
    return [=](double time) {
        return static_cast<float>(amplitude * std::sin(2 * std::numbers::pi * pitch * time));
    };
}

/// A writer with pictures and sound, started. Appends wait until there is room.
struct Film {
    Film(const fs::path& path, FileType type, AudioSettings audio = {})
        : writer(std::move(mediaLibrary().makeWriter(path, type).value())) {
        const bool isTake = type == FileType::quickTimeMovie;
        pictures =
            writer->addVideoInput({VideoCodec::h264, kWidth, kHeight, 500'000, 30, isTake}).value();
        sound = writer->addAudioInput(audio).value();
        const auto started = writer->startWriting();
        EXPECT_TRUE(started) << started.error().description();
        writer->startSession({0, 1});
    }

    template<typename Input>
    void waitFor(const Input& input) const {
        const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(20);
        while (!input.isReadyForMoreMediaData() && writer->status() == Status::writing &&
               std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
    }

    /// Appends the pictures up to `end`, `make` by number.
    bool showTo(double end, const std::function<PixelBufferPtr(int)>& make = numbered) {
        bool isTaken = true;
        for (; next / 30.0 < end; ++next) {
            waitFor(*pictures);
            isTaken = pictures->append(make(next % 2500), {next, 30}) && isTaken;
        }
        return isTaken;
    }

    /// Appends a wave from `from` to `to` in the buffers of a reader, with pictures alongside.
    void play(const Wave& wave, double from, double to, int sampleRate = 44100, int channels = 1) {
        const std::int64_t last = std::llround(to * sampleRate);
        for (std::int64_t at = std::llround(from * sampleRate); at < last; at += kFrames) {
            const double start = static_cast<double>(at) / sampleRate;
            showTo(start);
            waitFor(*sound);
            const auto frames = static_cast<int>(std::min<std::int64_t>(kFrames, last - at));
            EXPECT_TRUE(
                sound->append(soundOf(wave, start, frames, sampleRate, channels), {at, sampleRate}))
                << start;
        }
        showTo(to);
    }

    void finish() const {
        const auto finished = writer->finishWriting();
        EXPECT_TRUE(finished) << finished.error().description();
        EXPECT_EQ(writer->status(), Status::completed);
    }

    std::unique_ptr<AssetWriter> writer;
    VideoWriterInput* pictures;
    AudioWriterInput* sound;
    int next = 0; ///< The picture that comes next.
};

AudioSettings stereo() {
    return {2, 48000, 192'000, false};
}

std::string nameOf(FileType type) {
    return type == FileType::mp4 ? "mp4" : "mov";
}

class FfmpegAudioWriter : public ::testing::TestWithParam<FileType> {};

INSTANTIATE_TEST_SUITE_P(Types, FfmpegAudioWriter,
                         ::testing::Values(FileType::mp4, FileType::quickTimeMovie),
                         [](const auto& type) { return nameOf(type.param); });

} // namespace

TEST_P(FfmpegAudioWriter, aBurstIsHeardWhenItWasAppended) {
    const fs::path file = freshPath("burst." + nameOf(GetParam()));
    {
        Film film(file, GetParam());
        film.play(burstsAt({0.1, 1.0, 2.9}), 0, 3);
        film.finish();
    }
    const Sound ours = readSound(file);
    const Sound judge = decodedByCommand(file, 44100, 1);
    for (const double at : {0.1, 1.0, 2.9}) {
        EXPECT_NEAR(ours.loudest(at - 0.09, at + 0.09), at, 0.1 * kMillisecond);
        EXPECT_NEAR(judge.loudest(at - 0.09, at + 0.09), at, 0.1 * kMillisecond);
        EXPECT_NEAR(ours.at(at), 0.8, 0.1);
    }
    EXPECT_EQ(ours.samples.size(), 3U * 44100U);
    EXPECT_EQ(readNumbers(file).size(), 90U);
    EXPECT_NEAR(mediaLibrary().openAsset(file)->duration.seconds(), 3, 2e-5);
}

TEST_P(FfmpegAudioWriter, theTrackIsAac) {
    const fs::path file = freshPath("kind." + nameOf(GetParam()));
    {
        Film film(file, GetParam());
        film.play(tone(440, 0.5), 0, 1);
        film.finish();
    }
    EXPECT_EQ(probeSound(file, "codec_name"), "aac");
    EXPECT_EQ(probeSound(file, "codec_tag_string"), "mp4a");
    EXPECT_EQ(probeSound(file, "sample_rate"), "44100");
    EXPECT_EQ(probeSound(file, "channels"), "1");
    EXPECT_EQ(probeSound(file, "start_time"), "0.000000");
    EXPECT_NEAR(std::stod(probeSound(file, "duration")), 1, 0.001);
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.amplitude(0.1, 0.9), 0.5, 0.01);
}

TEST_P(FfmpegAudioWriter, soundOfOtherRatesIsResampledInItsPlace) {
    for (const int sampleRate : {8000, 44100, 48000, 96000}) {
        const fs::path file = freshPath("rates." + nameOf(GetParam()));
        {
            Film film(file, GetParam());
            film.play(burstsAt({0.5, 1.7}), 0, 2, sampleRate);
            film.finish();
        }
        const Sound sound = readSound(file);
        EXPECT_NEAR(sound.loudest(0.4, 0.6), 0.5, 0.2 * kMillisecond) << sampleRate;
        EXPECT_NEAR(sound.loudest(1.6, 1.8), 1.7, 0.2 * kMillisecond) << sampleRate;
        EXPECT_NEAR(sound.end(), 2, kMillisecond) << sampleRate;
    }
}

TEST_P(FfmpegAudioWriter, aGapIsSilentAndWhatFollowsKeepsItsPlace) {
    const fs::path file = freshPath("gaps." + nameOf(GetParam()));
    const Wave wave = burstsAt({0.7, 2.6});
    {
        Film film(file, GetParam());
        film.play(wave, 0.5, 1);
        film.play(wave, 2.5, 3);
        film.finish();
    }
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.loudest(0, 1.2), 0.7, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.loudest(2, 3), 2.6, 0.1 * kMillisecond);
    EXPECT_LT(sound.amplitude(0, 0.45), 0.001);
    EXPECT_LT(sound.amplitude(1.1, 2.4), 0.001);
    EXPECT_NEAR(sound.end(), 3, 0.1 * kMillisecond);
}

TEST_P(FfmpegAudioWriter, whatLiesOverEarlierSoundIsCutOff) {
    const fs::path file = freshPath("overlap." + nameOf(GetParam()));
    {
        Film film(file, GetParam(), stereo());
        film.play(tone(440, 0.4), 0, 1, 48000, 2);
        const Wave other = tone(1000, 0.2);
        // From 0.5 to 1.5 s; only what follows 1 s is heard.
        EXPECT_TRUE(film.sound->append(soundOf(other, 0.5, 48000, 48000, 2), {1, 2}));
        EXPECT_FALSE(film.sound->append(soundOf(other, 0, 4800, 48000, 2), {1, 1}));
        film.showTo(1.5);
        film.finish();
    }
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.amplitude(0.5, 0.95, 0), 0.4, 0.01);
    EXPECT_NEAR(sound.amplitude(1.05, 1.45, 1), 0.2, 0.01);
    EXPECT_NEAR(sound.end(), 1.5, 0.1 * kMillisecond);
}

TEST_P(FfmpegAudioWriter, soundBeforeTheSessionIsCutOff) {
    const fs::path file = freshPath("before." + nameOf(GetParam()));
    {
        Film film(file, GetParam());
        const Wave wave = burstsAt({0.25});
        EXPECT_FALSE(film.sound->append(soundOf(wave, -1, 4410), {-1, 1}));
        EXPECT_TRUE(film.sound->append(soundOf(wave, -0.5, 44100), {-1, 2}));
        film.showTo(1);
        film.finish();
    }
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.loudest(0, 0.5), 0.25, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.end(), 0.5, 0.1 * kMillisecond);
}

TEST_P(FfmpegAudioWriter, manyChannelsAreMixedWithoutClipping) {
    for (const int channels : {2, 3, 6, 8}) {
        const fs::path file = freshPath("mixed." + nameOf(GetParam()));
        {
            Film film(file, GetParam());
            film.play(tone(440, 0.9), 0, 1, 48000, channels);
            film.finish();
        }
        const Sound sound = readSound(file);
        double loudest = 0;
        for (double time = 0.1; time < 0.9; time += 1.0 / 44100) {
            loudest = std::max<double>(loudest, std::abs(sound.at(time)));
        }
        EXPECT_LT(loudest, 0.96) << channels;
        EXPECT_NEAR(sound.amplitude(0.1, 0.9), 0.9, 0.02) << channels;
    }
}

TEST_P(FfmpegAudioWriter, theMeanOfLeftAndRightIsHeard) {
    const fs::path file = freshPath("left." + nameOf(GetParam()));
    {
        Film film(file, GetParam());
        auto buffer = std::make_shared<AudioBuffer>(*soundOf(tone(440, 0.8), 0, 48000, 48000, 2));
        for (std::size_t i = 1; i < buffer->samples.size(); i += 2) {
            buffer->samples[i] = 0;
        }
        EXPECT_TRUE(film.sound->append(buffer, {0, 1}));
        film.showTo(1);
        film.finish();
    }
    EXPECT_NEAR(readSound(file).amplitude(0.1, 0.9), 0.4, 0.01);
}

TEST_P(FfmpegAudioWriter, soundMayEndEarlyOrLate) {
    for (const double end : {0.5, 2.5}) {
        const fs::path file = freshPath("ends." + nameOf(GetParam()));
        {
            Film film(file, GetParam());
            film.showTo(1.5);
            film.pictures->markAsFinished();
            film.next = 1000; // No more pictures.
            film.play(tone(440, 0.5), 0, end);
            film.sound->markAsFinished();
            EXPECT_FALSE(film.sound->isReadyForMoreMediaData());
            EXPECT_FALSE(film.sound->append(soundOf(tone(440, 0.5), 0, kFrames), {3, 1}));
            film.finish();
        }
        EXPECT_NEAR(readSound(file).end(), end, 0.1 * kMillisecond);
        EXPECT_EQ(readNumbers(file).size(), 45U);
        EXPECT_NEAR(mediaLibrary().openAsset(file)->duration.seconds(), std::max(end, 1.5), 2e-5);
    }
}

TEST_P(FfmpegAudioWriter, aTrackWithoutSoundIsLeftOut) {
    const fs::path file = freshPath("mute." + nameOf(GetParam()));
    {
        Film film(file, GetParam());
        film.showTo(1);
        film.finish();
    }
    const auto asset = mediaLibrary().openAsset(file);
    ASSERT_TRUE(asset);
    EXPECT_TRUE(asset->audioTracks.empty());
    EXPECT_EQ(readNumbers(file).size(), 30U);
    EXPECT_EQ(asset->duration, (MediaTime{1, 1}));
}

TEST_P(FfmpegAudioWriter, soundWithoutPicturesLeavesNoFile) {
    const fs::path file = freshPath("blind." + nameOf(GetParam()));
    Film film(file, GetParam());
    EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, 22050), {0, 1}));
    film.finish();
    EXPECT_FALSE(fs::exists(file));
}

TEST_P(FfmpegAudioWriter, offlineSoundWaitsForThePictures) {
    const fs::path file = freshPath("ahead." + nameOf(GetParam()));
    Film film(file, GetParam());
    std::int64_t at = 0;
    const auto fill = [&] {
        while (film.sound->isReadyForMoreMediaData() && at < 1'000'000) {
            EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, kFrames), {at, 44100}));
            at += kFrames;
        }
        return static_cast<double>(at) / 44100;
    };
    EXPECT_NEAR(fill(), 1, 0.03);
    film.showTo(2.02); // The last one at 2 s.
    EXPECT_NEAR(fill(), 3, 0.03);
    film.pictures->markAsFinished();
    EXPECT_TRUE(film.sound->isReadyForMoreMediaData());
    film.finish();
    EXPECT_NEAR(readSound(file).end(), static_cast<double>(at) / 44100, 0.1 * kMillisecond);
}

TEST(FfmpegAudioWriterOrder, picturesThatStandStillHoldNoSoundBackForever) {
    const fs::path file = freshPath("stalled.mp4");
    Film film(file, FileType::mp4);
    film.showTo(0.1);
    EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, 88200), {0, 1}));
    EXPECT_FALSE(film.sound->isReadyForMoreMediaData());
    const auto start = std::chrono::steady_clock::now();
    film.waitFor(*film.sound);
    EXPECT_TRUE(film.sound->isReadyForMoreMediaData());
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, 44100), {2, 1}));
    EXPECT_TRUE(film.showTo(3)); // And when they move, they do so again.
    EXPECT_TRUE(film.sound->isReadyForMoreMediaData());
    EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, 88200), {3, 1}));
    EXPECT_FALSE(film.sound->isReadyForMoreMediaData());
    film.finish();
    EXPECT_NEAR(readSound(file).end(), 5, 0.1 * kMillisecond);
}

TEST_P(FfmpegAudioWriter, liveSoundWaitsForNothingAndIsBounded) {
    const fs::path file = freshPath("live." + nameOf(GetParam()));
    Film film(file, GetParam(), {1, 44100, 128'000, true});
    for (int second = 0; second < 5; ++second) {
        film.waitFor(*film.sound);
        EXPECT_TRUE(film.sound->append(soundOf(tone(440, 0.5), 0, 44100), {second, 1}));
    }
    EXPECT_TRUE(film.sound->isReadyForMoreMediaData());
    int taken = 0;
    const AudioBufferPtr minute = soundOf(tone(440, 0.5), 0, 60 * 44100);
    for (int n = 0; n < 20; ++n) {
        taken += film.sound->append(minute, {5 + n * 60, 1}) ? 1 : 0;
    }
    EXPECT_LT(taken, 5);
    film.showTo(0.2);
    film.finish();
}

TEST_P(FfmpegAudioWriter, theTremblingOfALiveSourceTearsNothing) {
    const fs::path file = freshPath("jitter." + nameOf(GetParam()));
    {
        Film film(file, GetParam(), {1, 48000, 128'000, true});
        const Wave wave = tone(440, 0.5);
        for (int n = 0; n < 300; ++n) { // 3 s in pieces of 10 ms
            const std::int64_t jitter = (n * 7919 % 15 - 7) * 1'000'000;
            film.showTo(n / 100.0);
            film.waitFor(*film.sound);
            EXPECT_TRUE(film.sound->append(soundOf(wave, n / 100.0, 480, 48000),
                                           {n * std::int64_t{10'000'000} + jitter, 1'000'000'000}))
                << n;
        }
        film.finish();
    }
    const Sound sound = readSound(file);
    // A tear or a hole in a tone is a step between neighbours.
    float step = 0;
    for (std::size_t i = 48000 / 10; i + 1 < sound.samples.size(); ++i) {
        step = std::max(step, std::abs(sound.samples[i + 1] - sound.samples[i]));
    }
    EXPECT_LT(step, 0.5 * 2 * std::numbers::pi * 440 / 48000 * 1.2);
    EXPECT_NEAR(sound.end(), 3, 0.02);
}

TEST_P(FfmpegAudioWriter, aLiveClockThatIsNotOursKeepsItsPlace) {
    const fs::path file = freshPath("skew." + nameOf(GetParam()));
    constexpr double kSkew = 1.0005; // Seconds of ours in one of the source's.
    const std::vector<double> times{2, 15, 29};
    const Wave wave = [&](double time) {
        return 0.4F * burstsAt(times)(time) + tone(300, 0.2)(time);
    };
    {
        Film film(file, GetParam(), {1, 48000, 128'000, true});
        for (int n = 0; n < 3000; ++n) { // 30 s in pieces of 10 ms
            auto piece = std::make_shared<AudioBuffer>(AudioBuffer{48000, 1, {}});
            for (int i = 0; i < 480; ++i) {
                piece->samples.push_back(wave((n * 480 + i) / 48000.0 * kSkew));
            }
            film.showTo(n / 100.0);
            film.waitFor(*film.sound);
            EXPECT_TRUE(
                film.sound->append(piece, MediaTime::fromSeconds(n * 0.01 * kSkew, 1'000'000)));
        }
        film.finish();
    }
    const Sound sound = readSound(file);
    for (const double at : times) {
        EXPECT_NEAR(sound.loudest(at - 0.1, at + 0.1), at, 3 * kMillisecond);
    }
    EXPECT_NEAR(sound.end(), 30.015, 3 * kMillisecond);
    EXPECT_NEAR(sound.amplitude(20, 28), 0.2, 0.005);
    double step = 0; // Between the bursts there is nothing but the even tone.
    for (std::size_t i = 48000 * 3; i + 1 < 48000 * 14; ++i) {
        step = std::max<double>(step, std::abs(sound.samples[i + 1] - sound.samples[i]));
    }
    EXPECT_LT(step, 0.2 * 2 * std::numbers::pi * 300 / 48000 * 1.3);
}

TEST_P(FfmpegAudioWriter, picturesWaitForNoSound) {
    const fs::path folder = freshPath("alone-" + nameOf(GetParam()));
    fs::create_directory(folder);
    Film film(folder / "film.mov", GetParam());
    EXPECT_TRUE(film.showTo(20, noise)); // The sound's track is open, and empty.
    const auto written = [&] {
        std::uintmax_t size = 0;
        for (const auto& entry : fs::directory_iterator(folder)) {
            size += entry.file_size();
        }
        return size;
    };
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (written() < 400'000 && std::chrono::steady_clock::now() < end) {
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_GT(written(), 400'000U); // Not kept in memory until sound comes.
    film.play(burstsAt({19.5}), 19, 20);
    film.finish();
    const Sound sound = readSound(folder / "film.mov");
    EXPECT_NEAR(sound.loudest(18, 20), 19.5, 0.1 * kMillisecond);
    EXPECT_EQ(readNumbers(folder / "film.mov").size(), 600U);
}

TEST_P(FfmpegAudioWriter, whatIsNoNumberIsSilent) {
    const fs::path file = freshPath("nan." + nameOf(GetParam()));
    Film film(file, GetParam());
    auto buffer = std::make_shared<AudioBuffer>(*soundOf(tone(440, 0.5), 0, 44100));
    buffer->samples[100] = std::nanf("");
    buffer->samples[200] = INFINITY;
    EXPECT_TRUE(film.sound->append(buffer, {0, 1}));
    EXPECT_FALSE(film.sound->append(nullptr, {1, 1}));
    EXPECT_FALSE(film.sound->append(std::make_shared<AudioBuffer>(), {1, 1}));
    film.showTo(1);
    film.finish();
    EXPECT_NEAR(readSound(file).amplitude(0.1, 0.9), 0.5, 0.01);
}

TEST_P(FfmpegAudioWriter, theSessionsEndEndsTheSoundToo) {
    const fs::path file = freshPath("sessionend." + nameOf(GetParam()));
    Film film(file, GetParam());
    film.play(tone(440, 0.5), 0, 2);
    film.writer->endSession({2, 1});
    film.pictures->markAsFinished();
    for (int n = 0; n < 20; ++n) {
        film.waitFor(*film.sound);
        film.sound->append(soundOf(tone(440, 0.5), 0, 4410), {20 + n, 10});
    }
    film.finish();
    if (GetParam() == FileType::quickTimeMovie) {
        EXPECT_EQ(mediaLibrary().openAsset(file)->duration, (MediaTime{2, 1}));
        EXPECT_NEAR(readSound(file).end(), 2, 0.1 * kMillisecond);
    }
    EXPECT_EQ(readNumbers(file).size(), 60U);
}

TEST_P(FfmpegAudioWriter, cancelEndsBothTracks) {
    const fs::path file = freshPath("stopped." + nameOf(GetParam()));
    Film film(file, GetParam());
    film.play(tone(440, 0.5), 0, 1);
    film.writer->cancelWriting();
    EXPECT_FALSE(film.sound->isReadyForMoreMediaData());
    EXPECT_FALSE(film.sound->append(soundOf(tone(440, 0.5), 0, kFrames), {2, 1}));
    EXPECT_FALSE(fs::exists(file));
}

TEST(FfmpegAudioWriterLength, tenMinutesDoNotDrift) {
    const fs::path file = freshPath("long.mp4");
    const std::vector<double> times{1, 200.5, 599};
    {
        auto writer = mediaLibrary().makeWriter(file, FileType::mp4).value();
        auto* pictures =
            writer->addVideoInput({VideoCodec::h264, kWidth, kHeight, 500'000, 25, false}).value();
        auto* sound = writer->addAudioInput({}).value();
        ASSERT_TRUE(writer->startWriting());
        writer->startSession({0, 1});
        const auto wait = [](const auto& input) {
            while (!input.isReadyForMoreMediaData()) {
                std::this_thread::sleep_for(std::chrono::microseconds(100));
            }
        };
        const Wave wave = burstsAt(times);
        int second = 0;
        for (std::int64_t at = 0; at < std::int64_t{600} * 48000; at += kFrames) {
            const double start = static_cast<double>(at) / 48000;
            for (; second <= start; ++second) {
                wait(*pictures);
                ASSERT_TRUE(second == 0 ? pictures->append(numbered(7), {second, 1})
                                        : pictures->appendRepeat({second, 1}));
            }
            wait(*sound);
            ASSERT_TRUE(sound->append(soundOf(wave, start, kFrames, 48000), {at, 48000}));
        }
        ASSERT_TRUE(writer->finishWriting());
    }
    const Sound sound = readSound(file);
    for (const double at : times) {
        EXPECT_NEAR(sound.loudest(at - 0.2, at + 0.2), at, 0.1 * kMillisecond);
    }
    EXPECT_NEAR(sound.end(), 600, kMillisecond);
    EXPECT_EQ(readNumbers(file).size(), 600U);
}

namespace {

/// A child process makes a take with sound; it is killed after it has appended
/// `pictures` pictures of 20 ms.
void recordAndKill(const fs::path& file, int pictures) {
    std::array<int, 2> pipe{};
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const pid_t child = ::fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        Film film(file, FileType::quickTimeMovie, {1, 48000, 128'000, true});
        const Wave wave = burstsAt({0.5, 1.1});
        const auto start = std::chrono::steady_clock::now();
        for (int n = 0;; ++n) {
            std::this_thread::sleep_until(start + std::chrono::milliseconds(20) * n);
            film.pictures->append(numbered(n), {n, 50});
            film.sound->append(soundOf(wave, n / 50.0, 960, 48000), {n, 50});
            (void)!::write(pipe[1], "+", 1);
        }
    }
    char byte = 0;
    for (int n = 0; n < pictures; ++n) {
        ASSERT_EQ(::read(pipe[0], &byte, 1), 1);
    }
    ::kill(child, SIGKILL);
    int status = 0;
    ::waitpid(child, &status, 0);
    ::close(pipe[0]);
    ::close(pipe[1]);
}

} // namespace

TEST(FfmpegAudioWriterCrash, aKilledTakeHoldsItsSoundInItsPlace) {
    const fs::path file = freshPath("killedsound.mov");
    recordAndKill(file, 125);
    const auto samples = readNumbers(file);
    ASSERT_GE(samples.size(), 75U);
    EXPECT_EQ(samples.back().number, static_cast<int>(samples.size()) - 1);
    const Sound sound = readSound(file);
    EXPECT_EQ(sound.status, AssetReaderStatus::completed);
    EXPECT_NEAR(sound.loudest(0.1, 0.9), 0.5, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.loudest(0.9, 1.5), 1.1, 0.1 * kMillisecond);
    EXPECT_GT(sound.end(), 1.4);
    const Sound judge = decodedByCommand(file, 48000, 1);
    EXPECT_NEAR(judge.loudest(0.1, 0.9), 0.5, kMillisecond);
}

TEST(FfmpegAudioWriterCrash, aTakeCanBeReadWhileItGrows) {
    const fs::path file = freshPath("growing.mov");
    Film film(file, FileType::quickTimeMovie, {1, 48000, 128'000, true});
    film.play(burstsAt({0.5}), 0, 2, 48000);
    std::this_thread::sleep_for(std::chrono::milliseconds(1500));
    EXPECT_GE(readNumbers(file).size(), 55U);
    EXPECT_NEAR(readSound(file).loudest(0.1, 1), 0.5, 0.1 * kMillisecond);
    film.finish();
    EXPECT_EQ(readNumbers(file).size(), 60U);
    EXPECT_NEAR(readSound(file).loudest(0.1, 1), 0.5, 0.1 * kMillisecond);
}

/// A limit on the file size stands for a disk that fills up while writing.
TEST_P(FfmpegAudioWriter, aFileThatCanNotGrowFailsTheWriter) {
    ::testing::GTEST_FLAG(death_test_style) = "threadsafe";
    const FileType type = GetParam();
    const fs::path folder = mediaFolder() / ("limited-sound-" + nameOf(type));
    const auto writeUntilItFails = [&] {
        fs::create_directories(folder);
        const fs::path file = folder / "film.mov";
        std::signal(SIGXFSZ, SIG_IGN);
        const rlimit limit{600'000, 600'000};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        Film film(file, type);
        int n = 0;
        for (; n < 4000 && film.writer->status() == Status::writing; ++n) {
            film.showTo(n / 10.0);
            film.waitFor(*film.sound);
            film.sound->append(soundOf(tone(440 + n, 0.5), 0, 4410), {n, 10});
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        }
        const auto finished = film.writer->finishWriting();
        const bool isRight = n < 4000 && film.writer->status() == Status::failed &&
                             !film.sound->isReadyForMoreMediaData() && !finished &&
                             finished.error().kind == MediaError::Kind::cannotWrite &&
                             finished.error().reason == "File too large";
        const bool isClean = type == FileType::mp4
                                 ? fs::is_empty(folder)
                                 : readNumbers(file).size() > 10 && readSound(file).end() > 0.5;
        fs::remove_all(mediaFolder()); // This process made one of its own.
        std::_Exit(isRight && isClean ? 0 : (isRight ? 2 : 1));
    };
    EXPECT_EXIT(writeUntilItFails(), ::testing::ExitedWithCode(0), "");
}

TEST(FfmpegAudioWriterFormat, refusesWhatTheEncoderDoesNotTake) {
    auto writer = mediaLibrary().makeWriter(freshPath("never.mp4"), FileType::mp4).value();
    for (const AudioSettings& settings : {AudioSettings{1, 12345}, AudioSettings{0, 44100},
                                          AudioSettings{1, 0}, AudioSettings{1, 44100, 0}}) {
        const auto added = writer->addAudioInput(settings);
        ASSERT_FALSE(added);
        EXPECT_EQ(added.error().kind, MediaError::Kind::noEncoder);
    }
}

TEST(FfmpegAudioWriterFormat, theMp4sTracksLieSideBySide) {
    const fs::path file = freshPath("interleaved.mp4");
    {
        Film film(file, FileType::mp4);
        film.play(tone(440, 0.5), 0, 10);
        film.finish();
    }
    EXPECT_EQ(boxesOf(file), "ftyp moov free mdat");
    // In the order of the file neither track runs away from the other, as players that stream
    // need it, however long the pictures are inside of their encoder.
    const std::string packets =
        outputOf(fmt::format("ffprobe -v error -show_entries packet=stream_index,pts_time,pos "
                             "-of csv=p=0 '{}' | grep , | sort -t, -k3 -n",
                             file.string()));
    std::array<double, 2> reached{0, 0};
    double furthest = 0;
    std::size_t at = 0;
    while (at < packets.size()) {
        const std::string line = packets.substr(at, packets.find('\n', at) - at);
        const auto stream = static_cast<std::size_t>(line[0] - '0');
        reached.at(stream) = std::stod(line.substr(2));
        furthest = std::max(furthest, std::abs(reached[0] - reached[1]));
        at += line.size() + 1;
    }
    EXPECT_GT(reached[1], 9);
    EXPECT_LT(furthest, 0.5);
}

} // namespace tavi
