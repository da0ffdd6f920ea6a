#include "e2e/Film.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <fstream>

namespace tavi::e2e {
namespace {

/// A square of 96 pixels in the lower right corner of 320x180, below the video's number.
const Rect kBubble{224, 84, 96, 96};

std::string pictures(const std::string& graph, const std::string& rest) {
    return fmt::format("-f lavfi -i \"{},format=yuv420p\" {}", graph, rest);
}

/// A camera's picture of any shape: its number fills the square in its middle.
std::string camera(int rate, double seconds, const std::string& padding) {
    return numbered(rate, seconds, "120x120") + ",pad=" + padding;
}

EditProject projectOf(const std::filesystem::path& take) {
    EditProject project = plainProject(take);
    project.outputSettings.resolution = {320, 180};
    CameraSettings& settings = project.cameraSettings;
    settings.enabled = true;
    settings.sizeFraction = 0.3;
    settings.marginFraction = 0;
    settings.borderWidth = 0;
    settings.shadowEnabled = false;
    settings.cornerRadius = 0;
    return project;
}

struct CameraCase {
    const char* name;
    std::string arguments;
};

std::ostream& operator<<(std::ostream& out, const CameraCase& source) {
    return out << source.name;
}

const std::string kWide = "160:120:20:0";

std::vector<CameraCase> cameras() {
    return {
        {"cameraAt15", pictures(camera(15, 1.5, kWide), "-c:v libx264 -preset veryfast -bf 2")},
        {"cameraAt60", pictures(camera(60, 1.5, kWide), "-c:v libx264 -preset ultrafast")},
        {"uprightCamera", pictures(camera(24, 1.5, "120:160:0:20"),
                                   "-c:v libx265 -preset ultrafast -tag:v hvc1 -x265-params "
                                   "log-level=none")},
        {"unevenCamera",
         pictures(camera(25, 1.5, kWide) + ",settb=1/90000,setpts='N*3600+1500*(1+sin(N*1.3))'",
                  "-fps_mode passthrough -enc_time_base 1/90000 -c:v libx264 -preset veryfast")},
        {"shortCamera", pictures(camera(30, 0.6, kWide), "-c:v libx264 -preset veryfast -g 5")},
    };
}

class ExportWithACamera : public testing::TestWithParam<CameraCase> {
protected:
    ExportWithACamera()
        : project(projectOf(madeTake(GetParam().name,
                                     pictures(numbered(30, 1.5), "-c:v libx264 -preset ultrafast"),
                                     GetParam().arguments))) {}

    EditProject project;
};

TEST_P(ExportWithACamera, showsItsPictureAheadByUpToOne) {
    expectFilm(project, kBubble);
}

TEST_P(ExportWithACamera, showsItAsMuchLaterAsItStarted) {
    project.cameraStartDelay = 0.1313;
    project.outputSettings.fps = 25;
    expectFilm(project, kBubble);
}

TEST_P(ExportWithACamera, staysInStepThroughCuts) {
    project.cameraStartDelay = 0.2;
    project.trimState.inPoint = 0.07;
    cut(project, 0.11, 0.15); // the first range ends before the camera starts
    cut(project, 0.4, 0.6171);
    cut(project, 0.7, 1.01);
    expectFilm(project, kBubble);
}

INSTANTIATE_TEST_SUITE_P(Cameras, ExportWithACamera, testing::ValuesIn(cameras()),
                         [](const auto& source) { return std::string(source.param.name); });

class ExportWithoutACamera : public testing::Test {
protected:
    EditProject project =
        projectOf(madeTake("camera", pictures(numbered(30, 0.5), "-c:v libx264 -preset ultrafast"),
                           pictures(camera(30, 0.5, kWide), "-c:v libx264 -preset ultrafast")));

    void expectNoBubble() const {
        const Film film = expectFilm(project);
        for (const ExpectedPicture& picture : picturesOf(film.path, kBubble)) {
            EXPECT_FALSE(picture.camera);
        }
    }
};

TEST_F(ExportWithoutACamera, showsNoneThatIsSwitchedOff) {
    project.cameraSettings.enabled = false;
    expectNoBubble();
}

TEST_F(ExportWithoutACamera, showsNoneThatStartsBehindTheEnd) {
    project.cameraStartDelay = 0.5;
    expectNoBubble();
}

TEST_F(ExportWithoutACamera, goesOnWithOneThatCannotBeRead) {
    const auto take =
        madeTake("broken-camera", pictures(numbered(30, 0.5), "-c:v libx264 -preset ultrafast"));
    std::ofstream(take / "camera.mov") << "no film at all";
    project.recordingPath = plainProject(take).recordingPath;
    const Film film = exported(project);
    for (const ExpectedPicture& picture : picturesOf(film.path, kBubble)) {
        EXPECT_NE(picture.number, kUnreadable);
        EXPECT_FALSE(picture.camera);
    }
}

} // namespace
} // namespace tavi::e2e
