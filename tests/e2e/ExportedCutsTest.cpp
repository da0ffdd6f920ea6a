#include "e2e/Film.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>

namespace tavi::e2e {
namespace {

std::filesystem::path steadyTake() {
    return madeTake("cuts-steady", fmt::format("-f lavfi -i \"{},format=yuv420p\" -c:v libx264 "
                                               "-preset veryfast -bf 3 -g 24",
                                               numbered(30, 2)));
}

std::filesystem::path unevenTake() {
    return madeTake("cuts-uneven",
                    fmt::format("-f lavfi -i \"{},settb=1/90000,setpts='N*2500+1200*(1+sin(N*2.3))'"
                                ",format=yuv420p\" -fps_mode passthrough -enc_time_base 1/90000 "
                                "-c:v libx264 -preset veryfast -bf 2 -g 30",
                                numbered(30, 2.4)));
}

class ExportOfCuts : public testing::Test {
protected:
    EditProject project = plainProject(steadyTake());
};

TEST_F(ExportOfCuts, overlappingAndNestedCutsLeaveWhatNoneCovers) {
    cut(project, 1.2, 1.5);
    cut(project, 0.3, 0.9);
    cut(project, 0.5, 1.0);
    cut(project, 0.4, 0.5);
    cut(project, 1.9, 1.8); // inverted: covers nothing
    cut(project, 1.7, 1.7);
    ASSERT_EQ(keptBy(project).size(), 3u);
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 9 + 6 + 15);
}

TEST_F(ExportOfCuts, cutsBeyondTheTrimChangeNothing) {
    project.trimState.inPoint = 0.5;
    project.trimState.outPoint = 1.5;
    cut(project, 0, 0.25);
    cut(project, 0.4, 0.6);
    cut(project, 1.6, 1.7);
    cut(project, 1.45, 9);
    ASSERT_EQ(keptBy(project).size(), 1u);
    expectFilm(project);
}

TEST_F(ExportOfCuts, rangesOfLessThanAFrameShowOnePictureEach) {
    for (int i = 0; i < 9; ++i) {
        cut(project, 0.1 * i + 0.02, 0.1 * i + 0.1);
    }
    project.trimState.outPoint = 0.9;
    ASSERT_EQ(keptBy(project).size(), 9u);
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 9);
    EXPECT_GT(film.progress.back(), 1); // 0.18 s are 6 frames in one piece
}

TEST_F(ExportOfCuts, rangesTooShortForTheFilmsClockShareOnePicture) {
    project.trimState.inPoint = 0.5;
    project.trimState.outPoint = 0.6;
    cut(project, 0.5002, 0.54);
    cut(project, 0.5402, 0.57);
    ASSERT_EQ(keptBy(project).size(), 3u);
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 3);
    EXPECT_EQ(picturesOf(film.path).size(), 1u);
}

TEST_F(ExportOfCuts, trimBeyondTheEndRepeatsTheLastPicture) {
    project.trimState.inPoint = 1.8;
    project.trimState.outPoint = 2.5;
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 21);
    EXPECT_EQ(picturesOf(film.path).back().number, 59);
}

void expectRefusal(const EditProject& project) {
    const std::filesystem::path path = mediaFolder() / "nothing.mp4";
    const auto report = exportTo(project, path);
    ASSERT_FALSE(report);
    EXPECT_EQ(description(report.error()), "No video track found in recording.");
    EXPECT_FALSE(std::filesystem::exists(path));
}

TEST_F(ExportOfCuts, everythingCutIsRefused) {
    cut(project, 0, 5);
    expectRefusal(project);
}

/// Trims and cuts by chance, on and off the grids of picture and film.
EditProject randomProject(unsigned seed) {
    std::mt19937 random(seed);
    const auto pick = [&](int most) { return static_cast<int>(random() % (most + 1)); };
    const auto moment = [&] {
        constexpr std::array kGrids{30.0, 600.0, 1000.0, 44100.0};
        const double grid = kGrids[static_cast<std::size_t>(pick(3))];
        return std::floor(pick(1'000'000) / 1e6 * 2.2 * grid) / grid;
    };
    EditProject project = plainProject(seed % 2 == 0 ? steadyTake() : unevenTake());
    constexpr std::array<int, 6> kRates{30, 60, 24, 25, 7, 50};
    project.outputSettings.fps = kRates[static_cast<std::size_t>(pick(5))];
    project.trimState.inPoint = pick(2) == 0 ? moment() / 2 : 0;
    if (pick(2) == 0) {
        project.trimState.outPoint = 1.1 + moment() / 2;
    }
    const int cuts = pick(5);
    for (int i = 0; i < cuts; ++i) {
        const double start = moment();
        cut(project, start, pick(3) == 0 ? moment() : start + moment() / 8);
    }
    return project;
}

class ExportOfRandomCuts : public testing::TestWithParam<unsigned> {};

TEST_P(ExportOfRandomCuts, showsThePicturesOfTheModel) {
    const EditProject project = randomProject(GetParam());
    if (expectedPictures(project).empty()) {
        expectRefusal(project);
    } else {
        expectFilm(project);
    }
}

INSTANTIATE_TEST_SUITE_P(Seeds, ExportOfRandomCuts, testing::Range(1U, 25U));

} // namespace
} // namespace tavi::e2e
