#include "render/VideoExportService.h"

#include "project/RecordingFolder.h"
#include "render/ExportLog.h"
#include "render/ExportOfATake.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using test::cut;
using test::ExportOfATake;
using test::isError;
using testing::Contains;
using testing::Each;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;

TEST_F(ExportOfATake, opensTheVideoOfTheRecordingPath) {
    ASSERT_TRUE(run());
    EXPECT_EQ(film.openedPath, "/takes/A take/video.mov");
    EXPECT_EQ(film.writtenPath, "film.mp4");
}

TEST_F(ExportOfATake, oneRangeWritesDurationTimesRateFramesAndEndsAtOne) {
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->hasFile());
    EXPECT_EQ(report->framesAppended, 10);
    EXPECT_THAT(times(), ElementsAre(0, 60, 120, 180, 240, 300, 360, 420, 480, 540));
    EXPECT_THAT(shades(), ElementsAre(0, 10, 20, 30, 40, 50, 60, 70, 80, 90));
    EXPECT_EQ(progress.size(), 10u);
    EXPECT_EQ(progress.back(), 1.0);
}

TEST_F(ExportOfATake, gridTimesAreProductsRoundedToTheTimescale) {
    project.outputSettings.fps = 7; // 600 / 7 is no whole number
    ASSERT_TRUE(run());
    EXPECT_THAT(times(), ElementsAre(0, 86, 171, 257, 343, 429, 514));
}

TEST_F(ExportOfATake, sourceFramesAreRepeatedWhereTheGridIsFiner) {
    project.outputSettings.fps = 25;
    ASSERT_TRUE(run());
    // 0, .04, .08 | .12, .16 | .2, ...: the latest frame at or before each moment.
    EXPECT_THAT(shades(), ElementsAre(0, 0, 0, 10, 10, 20, 20, 20, 30, 30, 40, 40, 40, 50, 50, 60,
                                      60, 60, 70, 70, 80, 80, 80, 90, 90));
}

std::vector<bool> repeats(const FakeFilm& film) {
    std::vector<bool> values;
    for (const auto& frame : film.written) {
        values.push_back(frame.isRepeat);
    }
    return values;
}

TEST_F(ExportOfATake, picturesThatStayTheSameAreRepeated) {
    film.samples = {{0, true, 10}, {0.2, true, 20}, {0.3, true, 20}, {0.5, true, 30}};
    project.trimState.outPoint = 0.7;
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(10, 10, 20, 20, 20, 30, 30));
    EXPECT_THAT(repeats(film), ElementsAre(false, true, false, true, true, false, true));
    EXPECT_EQ(progress.size(), 7u);
}

TEST_F(ExportOfATake, pictureThatTheFilmRefusedIsNotRepeated) {
    film.samples = {{0, true, 10}};
    film.framesNotTaken = {0, 3};
    project.trimState.outPoint = 0.5;
    ASSERT_TRUE(run());
    EXPECT_THAT(times(), ElementsAre(60, 120, 240));
    EXPECT_THAT(repeats(film), ElementsAre(false, true, true));
}

TEST_F(ExportOfATake, sourceFramesAreSkippedWhereTheGridIsCoarser) {
    project.outputSettings.fps = 4;
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(0, 20, 50, 70));
}

TEST_F(ExportOfATake, theFirstFrameStandsFromTheBeginningWhateverItsTime) {
    film.samples = {{0.5, true, 50}, {0.7, true, 70}};
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(50, 50, 50, 50, 50, 50, 50, 70, 70, 70));
}

TEST_F(ExportOfATake, aSampleWithoutAPictureLeavesTheOneBeforeInForce) {
    film.samples[3].hasImage = false;
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(0, 10, 20, 20, 40, 50, 60, 70, 80, 90));
}

TEST_F(ExportOfATake, noPictureYetWritesNothingAndReportsNoProgress) {
    film.samples = {{0.0, false, 0}, {0.5, true, 50}};
    ASSERT_TRUE(run());
    EXPECT_THAT(times(), ElementsAre(300, 360, 420, 480, 540));
    EXPECT_THAT(progress, SizeIs(5));
}

TEST_F(ExportOfATake, theLastFrameIsRepeatedToTheEndOfTheRange) {
    film.samples.resize(3);
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(0, 10, 20, 20, 20, 20, 20, 20, 20, 20));
}

TEST_F(ExportOfATake, aRangeBeyondTheVideoWritesNothing) {
    project.trimState.inPoint = 2;
    project.trimState.outPoint = 3;
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->framesAppended, 0);
    EXPECT_FALSE(report->hasFile());
    EXPECT_THAT(film.written, SizeIs(0));
}

TEST_F(ExportOfATake, eachRangeRestartsTheGridAndRoundsItsFramesUp) {
    cut(project, 0.25, 0.5);
    cut(project, 0.75, 0.8);
    ASSERT_TRUE(run());
    // 0 to .25 is 3 frames, .5 to .75 is 3, .8 to 1 is 2; in all .7 s, 7 frames.
    EXPECT_THAT(times(), ElementsAre(0, 60, 120, 150, 210, 270, 300, 360));
    EXPECT_THAT(shades(), ElementsAre(0, 10, 20, 50, 60, 70, 80, 90));
    EXPECT_GT(progress.back(), 1.0);
}

TEST_F(ExportOfATake, everyRangeGetsAReaderOfItsOwn) {
    cut(project, 0.25, 0.5);
    ASSERT_TRUE(run());
    ASSERT_THAT(film.readRanges, SizeIs(2));
    EXPECT_EQ(film.readRanges[0], (MediaTimeRange{{0, 600}, {150, 600}}));
    EXPECT_EQ(film.readRanges[1], (MediaTimeRange{{300, 600}, {300, 600}}));
}

TEST_F(ExportOfATake, anyRangeOfPositiveLengthWritesAFrame) {
    project.trimState.inPoint = 0.31;
    project.trimState.outPoint = 0.3100001;
    ASSERT_TRUE(run());
    EXPECT_THAT(shades(), ElementsAre(30));
}

TEST_F(ExportOfATake, nothingKeptReadsAsNoVideoTrack) {
    cut(project, -1, 2);
    const auto report = run();
    ASSERT_FALSE(report);
    EXPECT_TRUE(isError(report, ExportError::noVideoTrack));
    EXPECT_EQ(description(report.error()), "No video track found in recording.");
    EXPECT_THAT(film.calls, SizeIs(0));
}

TEST_F(ExportOfATake, aFileWithoutAVideoTrackFails) {
    film.hasVideoTrack = false;
    EXPECT_TRUE(isError(run(), ExportError::noVideoTrack));
}

struct Stage {
    const char* name;
    std::optional<MediaError> FakeFilm::*error;
};

class VideoExportServiceErrors : public ExportOfATake, public testing::WithParamInterface<Stage> {};

TEST_P(VideoExportServiceErrors, passThrough) {
    film.*GetParam().error = MediaError{MediaError::Kind::cannotDecode, "f", GetParam().name};
    const auto report = run();
    ASSERT_FALSE(report);
    EXPECT_EQ(std::get<MediaError>(report.error()).reason, GetParam().name);
}

INSTANTIATE_TEST_SUITE_P(Stages, VideoExportServiceErrors,
                         testing::Values(Stage{"open", &FakeFilm::openError},
                                         Stage{"writer", &FakeFilm::writerError},
                                         Stage{"input", &FakeFilm::inputError},
                                         Stage{"start", &FakeFilm::startError},
                                         Stage{"reader", &FakeFilm::readerError}),
                         [](const auto& stage) { return std::string(stage.param.name); });

TEST_F(ExportOfATake, theWriterIsAskedForTheFilmAsSpecified) {
    project.outputSettings = {{2560, 1440}, 10, false};
    project.trimState.outPoint = 0.05;
    ASSERT_TRUE(run());
    EXPECT_EQ(film.settings.codec, VideoCodec::hevc);
    EXPECT_EQ(film.settings.width, 2560);
    EXPECT_EQ(film.settings.height, 1440);
    EXPECT_EQ(film.settings.bitRate, 20'000'000);
    EXPECT_EQ(film.settings.expectedFrameRate, 10);
    EXPECT_FALSE(film.settings.realTime);
    EXPECT_THAT(film.calls, ElementsAre("makeWriter mp4", "addVideoInput", "startWriting",
                                        "startSession 0", "markAsFinished", "finishWriting"));
}

TEST(ExportBitRate, followsThePixelCount) {
    EXPECT_EQ(exportBitRate(1920, 1080), 10'000'000);
    EXPECT_EQ(exportBitRate(2558, 1440), 10'000'000);
    EXPECT_EQ(exportBitRate(2560, 1440), 20'000'000);
    EXPECT_EQ(exportBitRate(3838, 2160), 20'000'000);
    EXPECT_EQ(exportBitRate(3840, 2160), 40'000'000);
}

TEST_F(ExportOfATake, oddSizesAreRoundedUpToEvenPixels) {
    project.outputSettings.resolution = {33, 19};
    ASSERT_TRUE(run());
    EXPECT_EQ(film.settings.width, 34);
    EXPECT_EQ(film.settings.height, 20);
}

TEST_F(ExportOfATake, aFrameWithoutABufferIsLeftOut) {
    film.framesWithoutBuffer = {2, 3};
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->framesAppended, 8);
    EXPECT_THAT(times(), ElementsAre(0, 60, 240, 300, 360, 420, 480, 540));
    EXPECT_EQ(progress.back(), 0.8);
}

TEST_F(ExportOfATake, waitsInStepsOfTenMilliseconds) {
    film.notReadyPolls = 3;
    ASSERT_TRUE(run());
    EXPECT_THAT(film.written, SizeIs(10));
    EXPECT_THAT(slept, SizeIs(30));
    EXPECT_THAT(slept, Each(std::chrono::milliseconds(10)));
}

TEST_F(ExportOfATake, aLongWaitIsLoggedEveryHundredSteps) {
    film.notReadyPolls = 250;
    project.trimState.outPoint = 0.15;
    ASSERT_TRUE(run());
    EXPECT_THAT(messages(), Contains("  WAITING for writer (count=100) frame=0 writerStatus=1 "
                                     "audioExhausted=false"));
    EXPECT_THAT(messages(), Contains("  WAITING for writer (count=200) frame=1 writerStatus=1 "
                                     "audioExhausted=false"));
    EXPECT_THAT(messages(), Not(Contains(HasSubstr("count=250"))));
}

TEST_F(ExportOfATake, aFailedWriterEndsTheExportAndTheReportTellsWhy) {
    film.failsAfterFrames = 4;
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->writerStatus, AssetWriterStatus::failed);
    EXPECT_FALSE(report->hasFile());
    ASSERT_TRUE(report->writerError);
    EXPECT_EQ(report->writerError->kind, MediaError::Kind::diskFull);
    EXPECT_THAT(film.written, SizeIs(4));
    EXPECT_EQ(messages().back(), "Export DONE. writerStatus=3");
}

TEST_F(ExportOfATake, aWriterThatFailsDuringAWaitEndsIt) {
    film.notReadyPolls = 5;
    onSleep = [this] {
        if (slept.size() == 12) {
            film.writerStatus = AssetWriterStatus::failed;
        }
    };
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_EQ(report->writerStatus, AssetWriterStatus::failed);
    EXPECT_THAT(slept, SizeIs(12));
}

TEST_F(ExportOfATake, aDamagedSourceIsReported) {
    film.readerFails = true;
    const auto report = run();
    ASSERT_TRUE(report);
    EXPECT_TRUE(report->isSourceDamaged);
    EXPECT_EQ(report->framesAppended, 10);
}

TEST_F(ExportOfATake, cancelAtAFrameStopsReaderAndWriter) {
    onProgress = [this] { service->isCancelled = progress.size() == 3; };
    const auto report = run();
    ASSERT_FALSE(report);
    EXPECT_TRUE(isError(report, ExportError::cancelled));
    EXPECT_EQ(description(report.error()), "Export was cancelled.");
    EXPECT_THAT(film.written, SizeIs(3));
    EXPECT_THAT(film.calls, ElementsAre("makeWriter mp4", "addVideoInput", "startWriting",
                                        "startSession 0", "cancelReading", "cancelWriting"));
}

TEST_F(ExportOfATake, cancelBeforeTheFirstRangeCancelsNeitherReaderNorWriter) {
    isCancelled = true;
    const auto report = run();
    ASSERT_FALSE(report);
    EXPECT_TRUE(isError(report, ExportError::cancelled));
    EXPECT_THAT(film.calls, Not(Contains("cancelReading")));
    EXPECT_THAT(film.calls, Not(Contains("cancelWriting")));
    EXPECT_THAT(film.readRanges, SizeIs(0));
}

TEST_F(ExportOfATake, cancelDuringAWaitLeavesTheWriterToItsDestructor) {
    film.notReadyPolls = 5;
    onSleep = [this] { service->isCancelled = slept.size() == 7; };
    EXPECT_TRUE(isError(run(), ExportError::cancelled));
    EXPECT_THAT(slept, SizeIs(7));
    EXPECT_THAT(film.calls, Not(Contains("cancelWriting")));
    EXPECT_THAT(film.calls, Contains("dropped while writing"));
}

TEST_F(ExportOfATake, theLogTellsTheWholeRun) {
    cut(project, 0.25, 0.5);
    test::writeFile(log, "what an earlier export left\n");
    ASSERT_TRUE(run());
    EXPECT_THAT(messages(),
                ElementsAre("Export start: 2 ranges, totalFrames=8, outputDuration=0.75",
                            "Keep ranges: [\"0.0-0.25\", \"0.5-1.0\"]",
                            "Range 0: 0.0-0.25, duration=0.25, outputOffset=0.0",
                            "  frame 0/3 src=0.00 out=0.00 writerOK=1 readerOK=1",
                            "Range 0 COMPLETE. globalFrameIndex=3",
                            "Range 1: 0.5-1.0, duration=0.5, outputOffset=0.25",
                            "  frame 0/5 src=0.50 out=0.25 writerOK=1 readerOK=1",
                            "Range 1 COMPLETE. globalFrameIndex=8",
                            "All ranges done, draining remaining audio. globalAudioExhausted=false",
                            "All ranges done, finishing writer...", "Export DONE. writerStatus=2"));
}

TEST_F(ExportOfATake, aFrameLineIsLoggedEvery120Frames) {
    project.outputSettings.fps = 250;
    ASSERT_TRUE(run());
    EXPECT_THAT(messages(), Contains("  frame 120/250 src=0.48 out=0.48 writerOK=1 readerOK=1"));
    EXPECT_THAT(messages(), Contains("  frame 240/250 src=0.96 out=0.96 writerOK=1 readerOK=2"));
    EXPECT_THAT(messages(), Not(Contains(HasSubstr("frame 119/"))));
}

TEST_F(ExportOfATake, logLinesBeginWithTheDate) {
    clock.setNow(0);
    ASSERT_TRUE(run());
    EXPECT_THAT(test::readFile(log),
                testing::StartsWith("2001-01-01 00:00:00 +0000: Export start: "));
}

TEST_F(ExportOfATake, aMissingLogFolderIsNoTrouble) {
    log = folder / "nowhere" / "export_debug.log";
    EXPECT_TRUE(run());
    EXPECT_FALSE(std::filesystem::exists(log));
}

TEST_F(ExportOfATake, aKeyframeEndingAtTheOutputsEndIsDroppedOnlyWhenTrimmed) {
    // Zoomed onto a quarter of the frame, the cursor in its middle is out of sight.
    film.samples = {{0, true, 100}};
    ZoomKeyframe keyframe;
    keyframe.timestamp = 0.2;
    keyframe.endTime = 1.0;
    keyframe.rect = {0, 0, 16, 9};
    project.keyframes = {keyframe};
    project.cursorSettings.showCursor = true;
    project.cursorSettings.cursorStyle = CursorStyle::circle;
    project.cursorSettings.cursorSize = 16;
    project.cursorEvents = {{0, 16, 9, CursorEventType::move}};
    ASSERT_TRUE(run());
    EXPECT_GT(film.written[1].shade, 200);
    EXPECT_EQ(film.written[2].shade, 100);
    EXPECT_EQ(film.written[9].shade, 100);

    film.written.clear();
    project.trimState.outPoint = 1.0;
    ASSERT_TRUE(run());
    EXPECT_GT(film.written[2].shade, 200);
    EXPECT_GT(film.written[9].shade, 200);
}

TEST(ExportLogText, numbersKeepADecimalPoint) {
    EXPECT_EQ(logText(5.0), "5.0");
    EXPECT_EQ(logText(-0.25), "-0.25");
    EXPECT_EQ(logText(0.1 + 0.2), "0.30000000000000004");
}

} // namespace
} // namespace tavi
