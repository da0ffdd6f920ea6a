#include "render/CameraFrames.h"

#include "fakes/FakeClock.h"
#include "fakes/FakeFilm.h"
#include "render/StillFrame.h"
#include "render/VideoExportService.h"
#include "support/Pictures.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>

namespace tavi {
namespace {

using testing::Each;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::SizeIs;

constexpr int kVideo = 200; ///< The video's shade.

/// A take of one second of an even video, and a camera that fills the whole
/// output with a frame every tenth of a second, just after the video's moments,
/// whose shade is 10 + its number.
class CameraInAFilm : public testing::Test {
protected:
    CameraInAFilm() {
        film.samples = {{0, true, kVideo}};
        film.hasCamera = true;
        for (int i = 0; i < 10; ++i) {
            film.cameraSamples.push_back(
                {i / 10.0 + 0.01, true, static_cast<std::uint8_t>(10 + i)});
        }
        project.recordingPath = "file:///takes/A%20take/";
        project.outputSettings = {{32, 18}, 10, false};
        project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
        project.appearanceSettings.padding = 0;
        project.appearanceSettings.cornerRadius = 0;
        project.cursorSettings.showCursor = false;
        project.cameraSettings.enabled = true;
        project.cameraSettings.sizeFraction = 1;
        project.cameraSettings.marginFraction = 0;
        project.cameraSettings.borderWidth = 0;
        project.cameraSettings.shadowEnabled = false;
        project.cameraSettings.cornerRadius = 0;
    }

    std::vector<int> exportedShades() {
        film.written.clear();
        VideoExportService service(film, clock, folder / "log", [](std::chrono::nanoseconds) {});
        EXPECT_TRUE(service.exportProject(project, "film.mp4", [](double) {}));
        std::vector<int> values;
        for (const auto& frame : film.written) {
            values.push_back(frame.shade);
        }
        return values;
    }

    int stillShade(double outputTime) {
        const auto video = film.openAsset("/takes/A take/video.mov");
        const auto image = renderStillFrame(film, *video, project, outputTime);
        return image ? test::pixelAt(*image, 16, 9).blue : -1;
    }

    void cut(double start, double end) {
        project.trimState.cutSegments.push_back({Uuid::make(), start, end});
    }

    test::TemporaryFolder folder;
    FakeFilm film;
    FakeClock clock;
    EditProject project;
};

TEST_F(CameraInAFilm, runsWithTheVideo) {
    EXPECT_THAT(exportedShades(), ElementsAre(10, 11, 12, 13, 14, 15, 16, 17, 18, 19));
}

TEST_F(CameraInAFilm, isShiftedByItsStartDelayAndStandsUntilThen) {
    project.cameraStartDelay = 0.3;
    EXPECT_THAT(exportedShades(), ElementsAre(10, 10, 10, 10, 11, 12, 13, 14, 15, 16));
    ASSERT_THAT(film.cameraReadRanges, SizeIs(1));
    EXPECT_EQ(film.cameraReadRanges[0].start, (MediaTime{0, 600}));
    EXPECT_EQ(film.cameraReadRanges[0].duration, (MediaTime{420, 600}));
}

TEST_F(CameraInAFilm, theStartDelayCountsInUnitsOf600) {
    project.cameraStartDelay = 0.1 + 0.4 / 600;
    exportedShades();
    EXPECT_EQ(film.cameraReadRanges.at(0).end(), (MediaTime{540, 600}));
}

TEST_F(CameraInAFilm, aheadByUpToOneOfItsFrames) {
    for (auto& sample : film.cameraSamples) {
        sample.time += 0.05;
    }
    // At 0.1 the frame of 0.16 is in force, not that of 0.06.
    EXPECT_THAT(exportedShades(), ElementsAre(10, 11, 12, 13, 14, 15, 16, 17, 18, 19));
}

TEST_F(CameraInAFilm, itsLastFrameStandsToTheEndOfTheRange) {
    film.cameraDuration = 0.3;
    film.cameraSamples.resize(3);
    EXPECT_THAT(exportedShades(), ElementsAre(10, 11, 12, 12, 12, 12, 12, 12, 12, 12));
}

TEST_F(CameraInAFilm, aFrameWithoutAPictureIsPassedOver) {
    film.cameraSamples[2].hasImage = false;
    EXPECT_THAT(exportedShades(), ElementsAre(10, 11, 11, 13, 14, 15, 16, 17, 18, 19));
    film.cameraSamples[0].hasImage = false;
    film.cameraSamples[1].hasImage = false;
    EXPECT_THAT(exportedShades(), ElementsAre(kVideo, kVideo, kVideo, 13, 14, 15, 16, 17, 18, 19));
}

TEST_F(CameraInAFilm, everyRangeBeginsAnew) {
    project.cameraStartDelay = 0.1;
    cut(0.3, 0.75);
    EXPECT_THAT(exportedShades(), ElementsAre(10, 10, 11, 17, 18, 18));
    ASSERT_THAT(film.cameraReadRanges, SizeIs(2));
    EXPECT_EQ(film.cameraReadRanges[1].start, (MediaTime{390, 600}));
    EXPECT_EQ(film.cameraReadRanges[1].end(), (MediaTime{540, 600}));
    EXPECT_EQ(film.cameraOpenings, 1);
}

TEST_F(CameraInAFilm, aRangeBeforeItsStartOrBeyondItsEndHasNone) {
    project.cameraStartDelay = 0.4;
    film.cameraDuration = 0.3;
    film.cameraSamples.resize(3);
    cut(0.2, 0.5);
    cut(0.6, 0.8);
    EXPECT_THAT(exportedShades(), ElementsAre(kVideo, kVideo, 11, kVideo, kVideo));
    EXPECT_THAT(film.cameraReadRanges, SizeIs(1));
}

TEST_F(CameraInAFilm, isNotOpenedWhenItIsSwitchedOff) {
    project.cameraSettings.enabled = false;
    EXPECT_THAT(exportedShades(), Each(kVideo));
    EXPECT_EQ(stillShade(0.5), kVideo);
    EXPECT_EQ(film.cameraOpenings, 0);
}

TEST_F(CameraInAFilm, failuresMeanNoBubble) {
    film.hasCamera = false;
    EXPECT_THAT(exportedShades(), Each(kVideo));
    EXPECT_EQ(stillShade(0.5), kVideo);
    film.hasCamera = true;
    film.hasCameraTrack = false;
    EXPECT_THAT(exportedShades(), Each(kVideo));
    film.hasCameraTrack = true;
    film.cameraReaderError = MediaError{MediaError::Kind::cannotDecode, "camera.mov", ""};
    EXPECT_THAT(exportedShades(), Each(kVideo));
    film.cameraReaderError.reset();
    for (const double delay : {-0.1, std::nan(""), HUGE_VAL}) {
        project.cameraStartDelay = delay;
        EXPECT_THAT(exportedShades(), Each(kVideo)) << delay;
    }
    film.cameraSamples.clear();
    project.cameraStartDelay = 0;
    EXPECT_THAT(exportedShades(), Each(kVideo));
}

TEST_F(CameraInAFilm, aStillShowsWhatTheExportShows) {
    project.cameraStartDelay = 0.2;
    film.cameraDuration = 0.5;
    film.cameraSamples.resize(5);
    cut(0.3, 0.4);
    const std::vector<int> exported = exportedShades();
    EXPECT_THAT(exported, ElementsAre(10, 10, 10, 12, 13, 14, 14, 14, 14));
    for (std::size_t i = 0; i < exported.size(); ++i) {
        EXPECT_EQ(stillShade(0.1 * static_cast<double>(i)), exported[i]) << i;
    }
}

TEST(CameraFrames, showNothingByThemselves) {
    CameraFrames frames;
    frames.advance(5);
    EXPECT_FALSE(frames.current());
}

} // namespace
} // namespace tavi
