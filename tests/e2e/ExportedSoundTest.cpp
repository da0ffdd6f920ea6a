#include "e2e/Film.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <cmath>
#include <random>

namespace tavi::e2e {
namespace {

constexpr double kSeconds = 2.4; ///< Of every source.

/// How far a burst may be from where it belongs: the film's clock of 1/600 s, to which
/// each range's place is rounded, and what an encoder does to its shape.
constexpr double kTolerance = 0.001;

/// Whole pieces of sound are kept, also those that begin up to 50 ms behind the end
/// of a range: so much may be heard of a cut, laid over the range behind it.
constexpr double kReach = 0.05 + 1024 / 44100.0;

std::string video(double seconds) {
    return fmt::format("-f lavfi -i \"{},format=yuv420p\" ", numbered(30, seconds));
}

std::string sound(const std::string& graph) {
    return fmt::format("-f lavfi -i \"{}\" ", graph);
}

const std::string kPictures = "-map 0 -map 1 -c:v libx264 -preset ultrafast ";

/// When the bursts of a source are to be heard in the film.
std::vector<double> expectedClicks(const std::vector<Stretch>& kept, double end, double shift = 0) {
    std::vector<double> times;
    for (int k = 0; clickTime(k) < end; ++k) {
        if (const auto time = filmTime(kept, clickTime(k) + shift)) {
            times.push_back(*time);
        }
    }
    return times;
}

void expectClicks(const std::vector<Click>& clicks, const std::vector<double>& expected,
                  double level) {
    ASSERT_EQ(clicks.size(), expected.size());
    for (std::size_t i = 0; i < clicks.size(); ++i) {
        EXPECT_NEAR(clicks[i].time, expected[i], kTolerance) << "burst " << i;
        EXPECT_GT(clicks[i].level, level) << "burst " << i;
    }
}

/// Exports a project and compares the bursts in its film, by the ffmpeg program and
/// by our own reader.
Film expectSound(const EditProject& project, const std::vector<double>& expected, double level) {
    Film film = exported(project);
    EXPECT_FALSE(film.report.isSoundDamaged);
    expectClicks(clicksByCommand(film.path), expected, level);
    expectClicks(clicksOf(film.path), expected, level);
    return film;
}

struct SoundCase {
    const char* name;
    int sampleRate;
    std::vector<bool> channels; ///< Which of them have the bursts.
    const char* layout;
    const char* codec;
    double level; ///< That the bursts in the film exceed.
};

std::ostream& operator<<(std::ostream& out, const SoundCase& sound) {
    return out << sound.name;
}

const std::vector<bool> kMono{true};
const std::vector<bool> kStereo{true, true};
const std::vector<bool> kSurround{true, true, true, true, true, true};

const std::vector<SoundCase> kSounds{
    {"aacMono44100", 44100, kMono, "mono", "-c:a aac -b:a 128k", 0.6},
    {"aacStereo48000", 48000, kStereo, "stereo", "-c:a aac -b:a 192k", 0.6},
    {"aacStereo96000", 96000, kStereo, "stereo", "-c:a aac -b:a 256k", 0.6},
    {"aacSurround48000", 48000, kSurround, "5.1", "-c:a aac -b:a 384k", 0.6},
    {"pcmMono48000", 48000, kMono, "mono", "-c:a pcm_s16le", 0.6},
    {"pcmStereo44100", 44100, kStereo, "stereo", "-c:a pcm_s24le", 0.6},
    {"pcmSurround96000", 96000, kSurround, "5.1", "-c:a pcm_f32le", 0.6},
    {"alacStereo44100", 44100, kStereo, "stereo", "-c:a alac", 0.6},
    {"mp3Stereo44100", 44100, kStereo, "stereo", "-c:a libmp3lame -b:a 192k", 0.6},
    {"opusStereo48000", 48000, kStereo, "stereo", "-c:a libopus -b:a 128k -f mp4", 0.6},
    {"flacMono96000", 96000, kMono, "mono", "-c:a flac -f mp4 -strict -2", 0.6},
    {"leftChannelAlone", 48000, {true, false}, "stereo", "-c:a pcm_s16le", 0.3},
    {"rightChannelAlone", 48000, {false, true}, "stereo", "-c:a pcm_s16le", 0.3},
    {"centreChannelAlone",
     48000,
     {false, false, true, false, false, false},
     "5.1",
     "-c:a pcm_s16le",
     0.15},
};

class ExportOfASound : public testing::TestWithParam<SoundCase> {
protected:
    EditProject project() const {
        const SoundCase& c = GetParam();
        return plainProject(
            madeTake(c.name, video(kSeconds) +
                                 sound(clicking(c.sampleRate, kSeconds, c.channels, c.layout)) +
                                 kPictures + c.codec));
    }
};

TEST_P(ExportOfASound, keepsEveryBurstInItsPlace) {
    const EditProject whole = project();
    expectSound(whole, expectedClicks(keptBy(whole), kSeconds), GetParam().level);
}

TEST_P(ExportOfASound, movesItThroughCutsWithThePictures) {
    EditProject edited = project();
    cut(edited, 0.3137, 0.5003);
    cut(edited, 0.9, 1.2621);
    cut(edited, 1.7, 2.0017);
    const std::vector<double> expected = expectedClicks(keptBy(edited), kSeconds);
    ASSERT_EQ(expected.size(), 7u); // of ten; each cut swallows one
    expectSound(edited, expected, GetParam().level);
}

INSTANTIATE_TEST_SUITE_P(Sounds, ExportOfASound, testing::ValuesIn(kSounds),
                         [](const auto& sound) { return std::string(sound.param.name); });

std::filesystem::path plainTake() {
    return madeTake("clicks", video(kSeconds) +
                                  sound(clicking(48000, kSeconds, kStereo, "stereo")) + kPictures +
                                  "-c:a pcm_s16le");
}

TEST(ExportOfSoundAndPictures, soundThatBeginsLateStaysLate) {
    const EditProject project = plainProject(madeTake(
        "late-sound", video(kSeconds) + "-itsoffset 0.3 " +
                          sound(clicking(44100, 1.5, kMono, "mono")) + kPictures + "-c:a aac"));
    expectSound(project, expectedClicks(keptBy(project), 1.5, 0.3), 0.6);
}

TEST(ExportOfSoundAndPictures, shortSoundLeavesTheRestSilent) {
    const EditProject project = plainProject(
        madeTake("short-sound", video(kSeconds) + sound(clicking(44100, 1, kMono, "mono")) +
                                    kPictures + "-c:a aac"));
    const Film film = expectSound(project, expectedClicks(keptBy(project), 1), 0.6);
    EXPECT_EQ(film.report.framesAppended, 72);
    EXPECT_NEAR(std::stod(probed(film.path, "a:0", "stream=duration")), 1, 0.05);
}

TEST(ExportOfSoundAndPictures, lastPictureStandsWhileTheSoundGoesOn) {
    const EditProject project = plainProject(
        madeTake("long-sound", video(1) + sound(clicking(44100, kSeconds, kMono, "mono")) +
                                   kPictures + "-c:a pcm_s16le"));
    expectSound(project, expectedClicks(keptBy(project), kSeconds), 0.6);
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 72);
    EXPECT_EQ(picturesOf(film.path).back().number, 29);
}

TEST(ExportOfSoundAndPictures, rangeBehindTheLastPictureHasSoundAlone) {
    EditProject project = plainProject(
        madeTake("long-sound", video(1) + sound(clicking(44100, kSeconds, kMono, "mono")) +
                                   kPictures + "-c:a pcm_s16le"));
    cut(project, 0.5, 1.25);
    project.trimState.outPoint = 2.2;
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 15);
    expectClicks(clicksByCommand(film.path), expectedClicks(keptBy(project), kSeconds), 0.6);
    EXPECT_NEAR(std::stod(probed(film.path, "a:0", "stream=duration")), 1.45, 0.05);
}

TEST(ExportOfSoundAndPictures, takeWithoutSoundHasASilentFilm) {
    const EditProject project =
        plainProject(madeTake("no-sound", video(1) + "-c:v libx264 -preset ultrafast"));
    const Film film = exported(project);
    EXPECT_EQ(probed(film.path, "a", "stream=codec_name"), "");
}

TEST(ExportOfSoundAndPictures, firstTrackOfSoundIsHeard) {
    const EditProject project = plainProject(
        madeTake("two-tracks", video(1) + sound(clicking(44100, 1, kMono, "mono")) +
                                   sound("sine=f=300:d=1") + kPictures + "-map 2 -c:a pcm_s16le"));
    expectSound(project, expectedClicks(keptBy(project), 1), 0.6);
}

TEST(ExportOfSoundAndPictures, fiftyMillisecondsBehindACutAreHeardOverTheNextRange) {
    EditProject project = plainProject(plainTake());
    // The second burst begins 20 ms behind the cut's start.
    cut(project, clickTime(1) - 0.02, 0.85);
    std::vector<double> expected = expectedClicks(keptBy(project), kSeconds);
    expected.insert(expected.begin() + 1, clickTime(1));
    expectSound(project, expected, 0.6);
}

TEST(ExportOfSoundAndPictures, restOfACutIsNotHeard) {
    EditProject project = plainProject(plainTake());
    cut(project, clickTime(1) - kReach - 0.005, clickTime(1) + 0.005);
    expectSound(project, expectedClicks(keptBy(project), kSeconds), 0.6);
}

/// True where it is open what is heard of a burst near the edge of a cut.
bool isOpen(double edge) {
    for (int k = 0; clickTime(k) < kSeconds; ++k) {
        if (edge > clickTime(k) - 2 * kReach && edge < clickTime(k) + 0.01) {
            return true;
        }
    }
    return false;
}

class ExportOfSoundInRandomCuts : public testing::TestWithParam<unsigned> {
protected:
    /// A moment in [from, to) that is not near a burst.
    double edge(double from, double to) {
        double time = 0;
        do {
            time = from + (to - from) * static_cast<double>(random() % 100'000) / 1e5;
        } while (isOpen(time));
        return time;
    }

    std::mt19937 random{GetParam()};
};

TEST_P(ExportOfSoundInRandomCuts, keepsTheBurstsThatNoCutCovers) {
    EditProject project = plainProject(plainTake());
    for (int i = 0; i < 4; ++i) {
        const double start = edge(0, 2);
        cut(project, start, edge(start, start + 0.6));
    }
    expectSound(project, expectedClicks(keptBy(project), kSeconds), 0.6);
}

INSTANTIATE_TEST_SUITE_P(Seeds, ExportOfSoundInRandomCuts, testing::Range(1U, 9U));

} // namespace
} // namespace tavi::e2e
