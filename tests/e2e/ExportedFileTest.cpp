#include "e2e/Film.h"

#include <fmt/format.h>
#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>
#include <malloc.h>

namespace tavi::e2e {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;

/// One second of 30 pictures with sound that is never silent.
fs::path take() {
    return madeTake("second", fmt::format("-f lavfi -i \"{},format=yuv420p\" -f lavfi -i "
                                          "anoisesrc=r=48000:d=1:a=0.5:seed=1 -ac 2 -c:v libx264 "
                                          "-preset ultrafast -c:a pcm_s16le",
                                          numbered(30, 1)));
}

std::uint32_t wordAt(const std::string& bytes, std::size_t position) {
    std::uint32_t word = 0;
    for (std::size_t i = 0; i < 4; ++i) {
        word = word << 8 | static_cast<std::uint8_t>(bytes[position + i]);
    }
    return word;
}

std::vector<std::string> boxesOf(const fs::path& film) {
    const std::string bytes = test::readFile(film);
    std::vector<std::string> boxes;
    for (std::size_t at = 0; at + 8 <= bytes.size();) {
        boxes.push_back(bytes.substr(at + 4, 4));
        const std::uint32_t size = wordAt(bytes, at);
        EXPECT_GE(size, 8u); // none of these films needs the long form
        at += std::max<std::size_t>(size, 8);
    }
    return boxes;
}

struct Fact {
    const char* stream;
    const char* entry;
    const char* value;
};

TEST(ExportedFile, saysWhatItHolds) {
    const Film film = exported(plainProject(take()));
    const std::vector<Fact> facts{
        {"v:0", "stream=codec_name", "hevc"},
        {"v:0", "stream=codec_tag_string", "hvc1"},
        {"v:0", "stream=profile", "Main"},
        {"v:0", "stream=pix_fmt", "yuv420p"},
        {"v:0", "stream=width", "160"},
        {"v:0", "stream=height", "90"},
        {"v:0", "stream=sample_aspect_ratio", "1:1"},
        {"v:0", "stream=color_range", "tv"},
        {"v:0", "stream=color_space", "bt709"},
        {"v:0", "stream=color_transfer", "bt709"},
        {"v:0", "stream=color_primaries", "bt709"},
        {"v:0", "stream=chroma_location", "left"},
        {"v:0", "stream=r_frame_rate", "30/1"},
        {"v:0", "stream=avg_frame_rate", "30/1"},
        {"v:0", "stream=start_time", "0.000000"},
        {"v:0", "stream=duration", "1.000000"},
        {"v:0", "stream=nb_frames", "30"},
        {"a:0", "stream=codec_name", "aac"},
        {"a:0", "stream=profile", "LC"},
        {"a:0", "stream=codec_tag_string", "mp4a"},
        {"a:0", "stream=sample_rate", "44100"},
        {"a:0", "stream=channels", "1"},
        {"a:0", "stream=start_time", "0.000000"},
        {"v", "format=nb_streams", "2"},
    };
    for (const Fact& fact : facts) {
        EXPECT_EQ(probed(film.path, fact.stream, fact.entry), fact.value) << fact.entry;
    }
    EXPECT_NEAR(std::stod(probed(film.path, "a:0", "stream=bit_rate")), 128'000, 13'000);
    EXPECT_NEAR(std::stod(probed(film.path, "a:0", "stream=duration")), 1, 0.03);
    EXPECT_NEAR(std::stod(probed(film.path, "v", "format=duration")), 1, 0.03);
}

TEST(ExportedFile, hasItsIndexInFrontOfTheMedia) {
    const std::vector<std::string> boxes = boxesOf(exported(plainProject(take())).path);
    EXPECT_EQ(boxes.front(), "ftyp");
    const auto index = std::find(boxes.begin(), boxes.end(), "moov");
    EXPECT_LT(index, std::find(boxes.begin(), boxes.end(), "mdat"));
    EXPECT_EQ(std::count(boxes.begin(), boxes.end(), "moof"), 0);
}

TEST(ExportedFile, isDecodedWithoutAComplaint) {
    EditProject project = plainProject(take());
    cut(project, 0.2, 0.5);
    const Film film = exported(project);
    const test::Outcome outcome = test::runShell("ffmpeg -nostdin -v warning -xerror -i '" +
                                                 film.path.string() + "' -f null - </dev/null");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
}

TEST(ExportedFile, replacesWhatStoodThereAndLeavesNothingElse) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "film.mp4", "what stood there");
    ASSERT_TRUE(exportTo(plainProject(take()), folder / "film.mp4"));
    EXPECT_EQ(boxesOf(folder / "film.mp4").front(), "ftyp");
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder.path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_THAT(names, ElementsAre("film.mp4"));
}

TEST(ExportedFile, isNotThereAfterACancel) {
    const test::TemporaryFolder folder;
    test::writeFile(folder / "film.mp4", "what stood there");
    const auto report = exportTo(
        plainProject(take()), folder / "film.mp4",
        [](VideoExportService& service, double share) { service.isCancelled = share > 0.4; });
    ASSERT_FALSE(report);
    EXPECT_EQ(description(report.error()), "Export was cancelled.");
    EXPECT_EQ(test::readFile(folder / "film.mp4"), "what stood there");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder.path()), {}), 1);
}

class ShortExportedFile : public testing::TestWithParam<int> {
protected:
    ~ShortExportedFile() override { mallopt(M_PERTURB, 0); }
};

/// Pictures are coded out of order, which a film of few of them has no room for.
TEST_P(ShortExportedFile, doesNotDependOnWhatItsMemoryHeld) {
    EditProject project = plainProject(take());
    project.trimState.inPoint = 0.5;
    project.trimState.outPoint = 0.49 + GetParam() / 30.0;
    mallopt(M_PERTURB, 0xa5);
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, GetParam());
    EXPECT_EQ(probed(film.path, "v:0", "stream=start_time"), "0.000000");
    EXPECT_NEAR(std::stod(probed(film.path, "v:0", "stream=duration")), GetParam() / 30.0, 1e-6);
}

INSTANTIATE_TEST_SUITE_P(Pictures, ShortExportedFile, testing::Range(1, 5));

struct SizeCase {
    const char* name;
    Size resolution;
    bool isAuto;
    Size film;
};

std::ostream& operator<<(std::ostream& out, const SizeCase& size) {
    return out << size.name;
}

class ExportedSize : public testing::TestWithParam<SizeCase> {};

/// Of a source of 321x181.
TEST_P(ExportedSize, isEvenAndHoldsTheWholePicture) {
    const SizeCase& c = GetParam();
    EditProject project = plainProject(madeTake(
        "odd", fmt::format("-f lavfi -i \"{},format=yuv444p\" -c:v libx264 -preset ultrafast",
                           numbered(30, 1, "321x181"))));
    project.outputSettings = {c.resolution, 30, c.isAuto};
    project.trimState.inPoint = 0.25;
    project.trimState.outPoint = 0.34;
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, 3);
    EXPECT_EQ(probed(film.path, "v:0", "stream=width"), std::to_string(std::lround(c.film.width)));
    EXPECT_EQ(probed(film.path, "v:0", "stream=height"),
              std::to_string(std::lround(c.film.height)));
}

INSTANTIATE_TEST_SUITE_P(
    Sizes, ExportedSize,
    testing::Values(SizeCase{"fhd", {1920, 1080}, false, {1920, 1080}},
                    SizeCase{"qhd", {2560, 1440}, false, {2560, 1440}},
                    SizeCase{"uhd", {3840, 2160}, false, {3840, 2160}},
                    SizeCase{"autoFhd", {1920, 1080}, true, {1916, 1080}},
                    SizeCase{"autoOfTheSourcesHeight", {320, 181}, true, {322, 182}},
                    SizeCase{"odd", {333, 187}, false, {334, 188}}),
    [](const auto& size) { return std::string(size.param.name); });

} // namespace
} // namespace tavi::e2e
