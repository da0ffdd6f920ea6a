#include "platform/ffmpeg/TestMedia.h"
#include "platform/ffmpeg/TestSound.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <fstream>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Status = AssetReaderStatus;

constexpr double kMillisecond = 0.001;

struct Kind {
    const char* name;
    const char* codec;     ///< ffmpeg's options that choose it.
    const char* extension; ///< Of the container.
    int sampleRate;
    const char* layout;
    int channels;
};

class FfmpegAudioReaderKinds : public ::testing::TestWithParam<Kind> {};

/// Two seconds with bursts at 0.25 and 1.5 s, and on the last channel at 0.75 s
/// too where there are several.
fs::path twoSeconds(const Kind& kind) {
    std::string channels;
    for (int i = 0; i < kind.channels; ++i) {
        const bool isLast = kind.channels > 1 && i == kind.channels - 1;
        channels +=
            (i ? "|" : "") + bursts(isLast ? std::vector{0.25, 0.75, 1.5} : std::vector{0.25, 1.5});
    }
    return generated(fmt::format("sound-{}.{}", kind.name, kind.extension),
                     fmt::format("-f lavfi -i \"aevalsrc='{}':s={}:c={}:d=2\" -strict -2 {}",
                                 channels, kind.sampleRate, kind.layout, kind.codec));
}

fs::path movieWith(const std::string& name, const std::string& sound, const std::string& options) {
    return generated(name, fmt::format("-f lavfi -i color=gray:s=64x48:r=25:d=2 {} -c:v libx264 "
                                       "-preset ultrafast {}",
                                       sound, options));
}

std::string pcm(double seconds, const std::vector<double>& times, int sampleRate = 48000) {
    return fmt::format("-f lavfi -i \"aevalsrc='{}':s={}:c=mono:d={}\"", bursts(times), sampleRate,
                       seconds);
}

/// Four seconds of quiet noise, as many bytes each second, with bursts at 0.5 and 3.5 s.
fs::path noisyFile() {
    return generated("noisy.m4a",
                     fmt::format("-f lavfi -i \"aevalsrc='0.1*(random(0)-0.5)+{}':s=48000:d=4\" "
                                 "-c:a aac -b:a 160k",
                                 bursts({0.5, 3.5})));
}

} // namespace

TEST_P(FfmpegAudioReaderKinds, everythingComesBackInItsPlace) {
    const Kind& kind = GetParam();
    const Sound sound = readSound(twoSeconds(kind));
    EXPECT_EQ(sound.status, Status::completed);
    ASSERT_EQ(sound.sampleRate, kind.sampleRate);
    ASSERT_EQ(sound.channels, kind.channels);
    const int last = kind.channels - 1;
    EXPECT_NEAR(sound.loudest(0, 0.5), 0.25, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.loudest(1, 2), 1.5, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.at(1.5), 0.8, 0.1);
    EXPECT_NEAR(sound.at(0.75), 0, 0.05 + (last == 0 ? 0 : 0.01));
    if (last > 0 && kind.channels != 6) { // The sixth, of low frequencies, has no such tone.
        EXPECT_NEAR(sound.loudest(0.6, 0.9, last), 0.75, 0.1 * kMillisecond);
        EXPECT_NEAR(sound.at(0.75, last), 0.8, 0.1);
    }
    EXPECT_NEAR(sound.end(), 2, 1.5 / kind.sampleRate);
}

TEST_P(FfmpegAudioReaderKinds, buffersAreOfOneLengthAndTouch) {
    const Sound sound = readSound(twoSeconds(GetParam()));
    ASSERT_FALSE(sound.pieces.empty());
    for (std::size_t i = 0; i < sound.pieces.size(); ++i) {
        const AudioSample& piece = sound.pieces[i];
        const auto position = static_cast<std::int64_t>(i) * AudioReader::kFramesPerBuffer;
        EXPECT_EQ(piece.presentationTime, (MediaTime{position, sound.sampleRate}));
        if (i + 1 < sound.pieces.size()) {
            EXPECT_EQ(piece.buffer->frames(), 1024U);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Kinds, FfmpegAudioReaderKinds,
    ::testing::Values(Kind{"aac", "-c:a aac -b:a 160k", "mp4", 44100, "mono", 1},
                      Kind{"aacStereo", "-c:a aac -b:a 256k", "mov", 48000, "stereo", 2},
                      Kind{"aacSurround", "-c:a aac -b:a 640k", "mp4", 48000, "5.1", 6},
                      Kind{"aacHigh", "-c:a aac -b:a 320k", "mp4", 96000, "stereo", 2},
                      Kind{"pcm", "-c:a pcm_s16le", "mov", 44100, "stereo", 2},
                      Kind{"pcmHigh", "-c:a pcm_s24le", "mov", 96000, "mono", 1},
                      Kind{"pcmSurround", "-c:a pcm_f32le", "mov", 48000, "5.1", 6},
                      Kind{"opus", "-c:a libopus -b:a 160k", "mp4", 48000, "stereo", 2},
                      Kind{"flac", "-c:a flac", "mp4", 44100, "stereo", 2},
                      Kind{"alac", "-c:a alac", "mov", 48000, "stereo", 2},
                      Kind{"mp3", "-c:a libmp3lame -b:a 192k", "mp4", 44100, "stereo", 2},
                      Kind{"mp3Movie", "-c:a libmp3lame -b:a 192k", "mov", 48000, "mono", 1}),
    [](const auto& kind) { return kind.param.name; });

TEST(FfmpegAudioReader, readsTheSamplesOfPcmExactly) {
    const fs::path file =
        generated("exact.mov", "-f lavfi -i \"aevalsrc='(mod(n,2000)-1000)/32768':s=48000:d=0.5\" "
                               "-c:a pcm_s16le");
    const Sound sound = readSound(file);
    ASSERT_EQ(sound.samples.size(), 24000U);
    for (std::size_t n = 0; n < sound.samples.size(); ++n) {
        ASSERT_EQ(sound.samples[n], (static_cast<float>(n % 2000) - 1000) / 32768) << n;
    }
}

TEST(FfmpegAudioReader, soundThatBeginsLaterStaysLater) {
    for (const char* codec : {"pcm_s16le", "aac"}) {
        const fs::path file = movieWith(fmt::format("later-{}.mov", codec),
                                        pcm(1, {0.25}) + " -filter_complex "
                                                         "\"[1]asetpts=PTS+0.5/TB[a]\"",
                                        fmt::format("-map 0 -map '[a]' -c:a {}", codec));
        const Sound sound = readSound(file);
        EXPECT_NEAR(sound.loudest(0.5, 1.5), 0.75, kMillisecond) << codec;
        EXPECT_GT(sound.pieces.front().presentationTime.seconds(), 0.47) << codec;
        EXPECT_NEAR(sound.end(), 1.5, kMillisecond) << codec;
    }
}

TEST(FfmpegAudioReader, whatAnEditListHidesIsNotHeard) {
    const fs::path whole = generated("whole.m4a", pcm(2, {0.5, 1.2}) + " -c:a aac");
    const fs::path cut =
        generated("cut.m4a", fmt::format("-ss 0.7 -i '{}' -c copy", whole.string()));
    const Sound sound = readSound(cut);
    const Sound judge = decodedByCommand(cut, 48000, 1);
    EXPECT_NEAR(sound.loudest(0.1, 1), 0.5, kMillisecond);
    EXPECT_NEAR(judge.loudest(0.1, 1), 0.5, kMillisecond);
    EXPECT_EQ(sound.pieces.front().presentationTime.value, 0);
    EXPECT_NEAR(sound.end(), 1.3, kMillisecond);
}

TEST(FfmpegAudioReader, aGapInTheFileStaysAGap) {
    const fs::path file =
        generated("gap.mp4", pcm(1.8, {0.25, 1.25}) + " -c:a aac -b:a 160k -bsf:a "
                                                      "noise=drop='between(pts*tb\\,0.4\\,1)'");
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.loudest(0, 0.4), 0.25, 0.1 * kMillisecond);
    EXPECT_NEAR(sound.loudest(0.9, 1.8), 1.25, 0.1 * kMillisecond);
    double longest = 0;
    for (std::size_t i = 1; i < sound.pieces.size(); ++i) {
        const AudioSample& before = sound.pieces[i - 1];
        const double end = before.presentationTime.seconds() +
                           static_cast<double>(before.buffer->frames()) / 48000;
        longest = std::max(longest, sound.pieces[i].presentationTime.seconds() - end);
    }
    EXPECT_NEAR(longest, 0.6, 0.05); // To whole frames of the source.
}

TEST(FfmpegAudioReader, aClockOfMillisecondsTearsNothing) {
    const fs::path file = generated("coarse.mkv", pcm(2, {0.25, 1.5}, 44100) + " -c:a flac");
    const Sound sound = readSound(file);
    EXPECT_NEAR(sound.loudest(0, 0.5), 0.25, 1.5 * kMillisecond);
    EXPECT_NEAR(sound.loudest(1, 2), 1.5, 1.5 * kMillisecond);
    for (std::size_t i = 0; i + 1 < sound.pieces.size(); ++i) {
        EXPECT_EQ(sound.pieces[i].buffer->frames(), 1024U);
    }
}

TEST(FfmpegAudioReader, aDamagedStretchIsLeftOut) {
    const fs::path whole = noisyFile();
    const fs::path damaged = freshPath("damaged.m4a");
    fs::copy_file(whole, damaged);
    std::fstream file(damaged, std::ios::binary | std::ios::in | std::ios::out);
    const auto size = static_cast<std::streamoff>(fs::file_size(damaged));
    file.seekp(size * 4 / 10);
    file << std::string(static_cast<std::size_t>(size / 10), '\xff');
    file.close();
    const Sound sound = readSound(damaged);
    EXPECT_EQ(sound.status, Status::completed);
    EXPECT_NEAR(sound.loudest(0, 1), 0.5, kMillisecond);
    EXPECT_NEAR(sound.loudest(3, 4), 3.5, kMillisecond);
}

TEST(FfmpegAudioReader, soundOfNothingButDamageFails) {
    const fs::path whole = noisyFile();
    const fs::path damaged = freshPath("ruined.m4a");
    std::ifstream from(whole, std::ios::binary);
    std::string bytes{std::istreambuf_iterator<char>(from), {}};
    const std::size_t media = bytes.find("mdat") + 4;
    const std::size_t index = bytes.find("moov");
    ASSERT_LT(media, index);
    std::fill(bytes.begin() + static_cast<std::ptrdiff_t>(media),
              bytes.begin() + static_cast<std::ptrdiff_t>(index) - 4, '\xff');
    std::ofstream(damaged, std::ios::binary) << bytes;
    const Sound sound = readSound(damaged);
    EXPECT_TRUE(sound.pieces.empty());
    EXPECT_EQ(sound.status, Status::failed);
}

TEST(FfmpegAudioReader, aFileCutShortGivesWhatIsThere) {
    const fs::path whole =
        generated("front.m4a", pcm(4, {0.5, 3.5}) + " -c:a pcm_s16le -f mov -movflags +faststart");
    const fs::path cut = freshPath("short.m4a");
    fs::copy_file(whole, cut);
    fs::resize_file(cut, fs::file_size(whole) / 2);
    const Sound sound = readSound(cut);
    EXPECT_NEAR(sound.loudest(0, 1), 0.5, kMillisecond);
    EXPECT_NEAR(sound.end(), 2, 0.1);
}

TEST(FfmpegAudioReader, endsEarlyWhenToldTo) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto asset = library.openAsset(noisyFile());
    const auto reader = library.makeAudioReader(*asset, asset->audioTracks.front());
    ASSERT_TRUE(reader);
    EXPECT_EQ((*reader)->status(), Status::reading);
    EXPECT_TRUE((*reader)->copyNextSample());
    (*reader)->cancelReading();
    EXPECT_EQ((*reader)->status(), Status::cancelled);
    EXPECT_FALSE((*reader)->copyNextSample());
    EXPECT_EQ((*reader)->status(), Status::cancelled);
}

TEST(FfmpegAudioReader, refusesWhatIsNoTrackOfSound) {
    FfmpegMediaLibrary library = mediaLibrary();
    const fs::path silent = generated("silent.mp4", numberedSource(25, 1));
    const auto asset = library.openAsset(silent);
    ASSERT_TRUE(asset);
    EXPECT_TRUE(asset->audioTracks.empty());
    const auto reader = library.makeAudioReader(*asset, AudioTrack{0, 48000, 2});
    ASSERT_FALSE(reader);
    EXPECT_EQ(reader.error().kind, MediaError::Kind::cannotDecode);
    EXPECT_FALSE(library.makeAudioReader(*asset, AudioTrack{7, 48000, 2}));
    EXPECT_FALSE(library.makeAudioReader(*asset, AudioTrack{0, 0, 0}));
}

TEST(FfmpegAsset, tellsWhenThePicturesEnd) {
    FfmpegMediaLibrary library = mediaLibrary();
    const auto endOf = [&](const fs::path& file) {
        return library.openAsset(file)->videoTracks.front().end;
    };
    EXPECT_EQ(endOf(movieWith("longsound.mp4", pcm(5, {1}), "-c:a aac")), (MediaTime{2, 1}));
    EXPECT_EQ(endOf(movieWith("shortsound.mov", pcm(1, {0.5}), "-c:a aac")), (MediaTime{2, 1}));
    EXPECT_EQ(
        endOf(generated("latepictures.mov",
                        "-itsoffset 1.6 -f lavfi -i color=gray:s=64x48:r=25:d=2 " + pcm(5, {1}) +
                            " -map 0 -map 1 -fps_mode passthrough -c:v libx264 -bf 0 "
                            "-c:a aac")),
        (MediaTime{36, 10}));
    EXPECT_EQ(endOf(movieWith("unknown.mkv", pcm(1, {0.5}), "-c:a aac")).value, 0);
}

} // namespace tavi
