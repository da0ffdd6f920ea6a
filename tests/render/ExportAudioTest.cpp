#include "render/ExportOfATake.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

namespace tavi {
namespace {

using test::cut;
using test::isError;
using testing::Contains;
using testing::DoubleNear;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::Pointwise;
using testing::SizeIs;

/// The same take with sound: pieces 1/8 s apart, whose times are exact, from 0 on.
class ExportOfSound : public test::ExportOfATake {
protected:
    ExportOfSound() {
        film.hasAudioTrack = true;
        giveSound(0, 1);
    }

    void giveSound(double start, double end) {
        film.audioTimes.clear();
        for (double time = start; time < end; time += 0.125) {
            film.audioTimes.push_back(time);
        }
    }

    std::vector<double> soundTimes() const {
        std::vector<double> times;
        for (const MediaTime time : film.writtenAudio) {
            times.push_back(time.seconds());
        }
        return times;
    }

    std::ptrdiff_t countOf(const std::string& call) const {
        return std::count(film.calls.begin(), film.calls.end(), call);
    }
};

TEST_F(ExportOfSound, isEncodedInMonoAt44100HzAnd128KilobitsASecond) {
    ASSERT_TRUE(run());
    ASSERT_TRUE(film.audioSettings);
    EXPECT_EQ(film.audioSettings->channels, 1);
    EXPECT_EQ(film.audioSettings->sampleRate, 44100);
    EXPECT_EQ(film.audioSettings->bitRate, 128'000);
    EXPECT_FALSE(film.audioSettings->realTime);
}

TEST_F(ExportOfSound, readerOpensOnceAfterTheSessionBegan) {
    cut(project, 0.25, 0.5);
    ASSERT_TRUE(run());
    EXPECT_THAT(film.calls, ElementsAre("makeWriter mp4", "addVideoInput", "addAudioInput",
                                        "startWriting", "startSession 0", "makeAudioReader 1",
                                        "markAsFinished", "markAsFinished sound", "finishWriting"));
}

TEST_F(ExportOfSound, takeWithoutSoundHasNoTrackOfIt) {
    film.hasAudioTrack = false;
    ASSERT_TRUE(run());
    EXPECT_FALSE(film.audioSettings);
    EXPECT_THAT(film.calls, Not(Contains(HasSubstr("sound"))));
}

TEST_F(ExportOfSound, untrimmedSoundGoesThroughAsItIs) {
    ASSERT_TRUE(run());
    EXPECT_THAT(soundTimes(), ElementsAre(0, 0.125, 0.25, 0.375, 0.5, 0.625, 0.75, 0.875));
}

TEST_F(ExportOfSound, soundInACutIsLeftOutAndWhatFollowsMovesUp) {
    cut(project, 0.25, 0.5);
    ASSERT_TRUE(run());
    // 0.25 lies within the tolerance of the first range's end.
    EXPECT_THAT(soundTimes(), ElementsAre(0, 0.125, 0.25, 0.25, 0.375, 0.5, 0.625));
}

TEST_F(ExportOfSound, toleranceOfFiftyMillisecondsIsExclusive) {
    cut(project, 0.25, 0.75);
    film.audioTimes = {0.25, 0.29, 0.2999, 0.3001, 0.74, 0.75};
    ASSERT_TRUE(run());
    EXPECT_THAT(soundTimes(),
                Pointwise(DoubleNear(1e-3), std::vector<double>{0.25, 0.29, 0.2999, 0.25}));
}

TEST_F(ExportOfSound, toleranceBelongsToTheEarlierRange) {
    cut(project, 0.5, 0.52);
    film.audioTimes = {0.53, 0.56};
    ASSERT_TRUE(run());
    // 0.53 lies in the second range, and within 0.05 s of the end of the first, which is asked
    // first.
    EXPECT_THAT(soundTimes(), Pointwise(DoubleNear(1e-3), std::vector<double>{0.53, 0.54}));
}

TEST_F(ExportOfSound, soundAheadOfTheFirstRangeIsDropped) {
    project.trimState.inPoint = 0.5;
    ASSERT_TRUE(run());
    EXPECT_THAT(soundTimes(), ElementsAre(0, 0.125, 0.25, 0.375));
}

TEST_F(ExportOfSound, readingEndsBehindTheLastRange) {
    project.trimState.outPoint = 0.5;
    giveSound(0, 100);
    ASSERT_TRUE(run());
    EXPECT_THAT(soundTimes(), ElementsAre(0, 0.125, 0.25, 0.375, 0.5));
    EXPECT_EQ(film.audioSamplesRead, 6u); // and 0.625, which ends it
    EXPECT_THAT(messages(),
                Contains("All ranges done, draining remaining audio. globalAudioExhausted=false"));
}

TEST_F(ExportOfSound, everyPictureTakesPiecesUpToTheFirstAtOrAfterItsTime) {
    film.audioTimes = {0, 0.04, 0.08, 0.12, 0.16, 0.2, 0.24, 0.28, 0.32, 0.36, 0.4};
    std::vector<std::size_t> read;
    onProgress = [&] { read.push_back(film.audioSamplesRead); };
    project.trimState.outPoint = 0.4;
    ASSERT_TRUE(run());
    // Pictures at 0, 0.1, 0.2 and 0.3: the pieces at 0, 0.12, 0.2 and 0.32 end each turn.
    EXPECT_THAT(read, ElementsAre(1, 4, 6, 9));
}

TEST_F(ExportOfSound, everyPictureTakesAtLeastOnePiece) {
    std::vector<std::size_t> read;
    onProgress = [&] { read.push_back(film.audioSamplesRead); };
    ASSERT_TRUE(run());
    EXPECT_THAT(read, ElementsAre(1, 2, 3, 4, 5, 6, 7, 8, 8, 8));
}

TEST_F(ExportOfSound, waitForTheFilmFeedsItsSoundBeforeItSleeps) {
    film.notReadyPolls = 3;
    ASSERT_TRUE(run());
    // The first frame's three polls took a piece each, with no sleep. Seven frames
    // later all sound is in, and its end is told instead of a sleep.
    EXPECT_EQ(film.writtenAudio.size(), 8u);
    EXPECT_THAT(messages(),
                Contains("  Audio marked finished (exhausted during writer wait)").Times(1));
    EXPECT_EQ(countOf("markAsFinished sound"), 1);
    // Of 30 polls that said no, some fed the sound, one told its end.
    EXPECT_LT(slept.size(), 30u - 3u);
    EXPECT_GE(slept.size(), 30u - 9u);
    EXPECT_THAT(slept, Each(std::chrono::nanoseconds(10'000'000)));
}

TEST_F(ExportOfSound, waitSleepsWhileTheFilmTakesNoSoundEither) {
    film.notReadyPolls = 3;
    film.isAudioReady = [](const FakeFilm&) { return false; };
    ASSERT_TRUE(run());
    EXPECT_GE(slept.size(), 30u);
    EXPECT_LE(slept.size(), 33u); // with the drain's, until the film takes pictures again
    EXPECT_THAT(film.writtenAudio, IsEmpty());
    EXPECT_EQ(countOf("markAsFinished sound"), 1);
}

TEST_F(ExportOfSound, soundThatEndsEarlyIsFinishedAtTheEndWithoutAWait) {
    giveSound(0, 0.25);
    ASSERT_TRUE(run());
    EXPECT_THAT(soundTimes(), ElementsAre(0, 0.125));
    EXPECT_THAT(messages(), Not(Contains(HasSubstr("Audio marked finished"))));
    EXPECT_THAT(messages(),
                Contains("All ranges done, draining remaining audio. globalAudioExhausted=true"));
    EXPECT_EQ(countOf("markAsFinished sound"), 1);
}

TEST_F(ExportOfSound, drainTakesTheRestInOneStretch) {
    film.isAudioReady = [](const FakeFilm& state) { return state.written.size() == 10; };
    ASSERT_TRUE(run());
    EXPECT_THAT(film.writtenAudio, SizeIs(8));
}

TEST_F(ExportOfSound, restIsLostWhereTheFilmStopsTakingItInTheDrain) {
    film.notReadyPolls = 2;
    film.isAudioReady = [&](const FakeFilm& state) {
        return state.written.size() == 10 && state.writtenAudio.size() < 3;
    };
    film.audioTimes = {0.9, 0.91, 0.92, 0.93, 0.94};
    ASSERT_TRUE(run());
    EXPECT_THAT(film.writtenAudio, SizeIs(3));
    EXPECT_EQ(film.writerStatus, AssetWriterStatus::completed);
}

TEST_F(ExportOfSound, drainDoesNotWaitForAFilmThatHasFailed) {
    film.isAudioReady = [&](const FakeFilm& state) {
        film.failsAfterFrames = 10;
        return state.written.size() < 5;
    };
    onSleep = [&] { ASSERT_LT(slept.size(), 100u); };
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->writerStatus, AssetWriterStatus::failed);
}

TEST_F(ExportOfSound, drainIsCancelled) {
    film.isAudioReady = [](const FakeFilm&) { return false; };
    film.notReadyPolls = 100;
    onSleep = [&] { service->isCancelled = film.written.size() == 10; };
    EXPECT_TRUE(isError(run(), ExportError::cancelled));
    EXPECT_THAT(slept, SizeIs(1001));
    EXPECT_THAT(film.calls, Contains("dropped while writing"));
}

TEST_F(ExportOfSound, drainDoesNotWaitForPicturesThatWillNotCome) {
    film.isAudioReady = [](const FakeFilm& state) { return state.written.size() < 10; };
    onSleep = [&] { ASSERT_LT(slept.size(), 100u); };
    giveSound(0, 50);
    film.duration = 60;
    film.videoEnd = 1;
    project.trimState.cutSegments.push_back({Uuid::make(), 1, 2});
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->hasFile());
}

TEST_F(ExportOfSound, readerThatCannotBeMadeLeavesASilentFilmAndSaysSo) {
    film.audioReaderError = MediaError{MediaError::Kind::cannotDecode, "video.mov", "no decoder"};
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->hasFile());
    EXPECT_TRUE(report->isSoundDamaged);
    EXPECT_EQ(countOf("markAsFinished sound"), 1);
}

TEST_F(ExportOfSound, encoderThatCannotBeMadeIsAnError) {
    film.audioInputError = MediaError{MediaError::Kind::noEncoder, "film.mp4", "none"};
    const auto report = run();
    ASSERT_FALSE(report);
    EXPECT_NE(std::get_if<MediaError>(&report.error()), nullptr);
}

TEST_F(ExportOfSound, rangeBehindTheEndOfTheVideoTrackWritesNothing) {
    film.duration = 3; // of the sound
    film.videoEnd = 1;
    giveSound(0, 3);
    cut(project, 0.5, 2);
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->framesAppended, 5);
}

} // namespace
} // namespace tavi
