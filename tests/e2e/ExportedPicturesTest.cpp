#include "e2e/Film.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

namespace tavi::e2e {
namespace {

/// A way in which pictures come into a file.
struct SourceCase {
    const char* name;
    std::string arguments;
};

std::ostream& operator<<(std::ostream& out, const SourceCase& source) {
    return out << source.name;
}

std::string plain(const std::string& graph, const std::string& rest) {
    return fmt::format("-f lavfi -i \"{},format=yuv420p\" {}", graph, rest);
}

const std::string kUneven = "settb=1/90000,setpts='N*3000+1100*(1+sin(N*1.7))'";

std::vector<SourceCase> sources() {
    const std::string copied = "-i steady.mov -c copy ";
    const std::string passed = "-fps_mode passthrough -enc_time_base 1/90000 ";
    return {
        {"h264", plain(numbered(30, 2), "-c:v libx264 -preset ultrafast")},
        {"h264WithBPictures", copied},
        {"h264WithNegativeOffsets", copied + "-movflags negative_cts_offsets"},
        {"h264WithOpenGroups", plain(numbered(30, 2), "-c:v libx264 -preset veryfast -bf 3 -g 15 "
                                                      "-x264-params open-gop=1:b-pyramid=normal")},
        {"hevc", plain(numbered(25, 2), "-c:v libx265 -preset ultrafast -tag:v hvc1 "
                                        "-x265-params log-level=none")},
        {"hevcWithBPictures",
         plain(numbered(30, 2), "-c:v libx265 -preset ultrafast -tag:v hvc1 "
                                "-x265-params log-level=none:bframes=4:keyint=15:open-gop=1")},
        {"unevenRate",
         plain(numbered(30, 2) + "," + kUneven, passed + "-c:v libx264 -preset ultrafast")},
        {"unevenRateWithBPictures", plain(numbered(30, 2) + "," + kUneven,
                                          passed + "-c:v libx264 -preset veryfast -bf 3 -g 20")},
        {"pausesOfHalfASecond", plain(numbered(30, 2) + ",select='lt(mod(n,24),9)'",
                                      "-fps_mode passthrough -c:v libx264 -preset ultrafast")},
        {"startsLate", plain(numbered(30, 1) + ",setpts=PTS+0.35/TB",
                             "-copyts -c:v libx264 -preset veryfast -bf 2")},
        {"editListIntoAGroup", "-ss 0.5 " + copied},
        {"rotated", copied + "-metadata:s:v:0 rotate=90"},
        {"fragmented", copied + "-movflags frag_keyframe+empty_moov+default_base_moof"},
        {"oddSize", fmt::format("-f lavfi -i \"{},format=yuv444p\" -c:v libx264 -preset ultrafast",
                                numbered(30, 1, "321x181"))},
        {"60FramesASecond", plain(numbered(60, 1), "-c:v libx264 -preset ultrafast")},
        {"ntscRate", plain(numbered(30, 2) + ",setpts=N*1001/30000/TB",
                           "-r 30000/1001 -c:v libx264 -preset ultrafast")},
    };
}

class ExportOfASource : public testing::TestWithParam<SourceCase> {
protected:
    static void SetUpTestSuite() {
        made("steady.mov", plain(numbered(30, 2), "-c:v libx264 -preset veryfast -bf 3 -g 20"));
    }

    EditProject project() const {
        return plainProject(madeTake(GetParam().name, GetParam().arguments));
    }
};

TEST_P(ExportOfASource, showsThePictureInForceAtEveryGridPoint) {
    EditProject whole = project();
    whole.outputSettings.fps = 60;
    const Film film = expectFilm(whole);
    EXPECT_FALSE(film.report.isSourceDamaged);
    EXPECT_DOUBLE_EQ(film.progress.back(), 1);
}

TEST_P(ExportOfASource, showsItThroughCuts) {
    EditProject trimmed = project();
    trimmed.trimState.inPoint = 0.117;
    trimmed.trimState.outPoint = 0.95;
    cut(trimmed, 0.3, 0.4213);
    cut(trimmed, 0.7, 0.8);
    expectFilm(trimmed);
}

INSTANTIATE_TEST_SUITE_P(Sources, ExportOfASource, testing::ValuesIn(sources()),
                         [](const auto& source) { return std::string(source.param.name); });

class ExportAtARate : public testing::TestWithParam<int> {};

TEST_P(ExportAtARate, standsOnTheGridOfThatRate) {
    EditProject project = plainProject(madeTake("h264", sources().front().arguments));
    project.outputSettings.fps = GetParam();
    project.trimState.outPoint = 0.9;
    const Film film = expectFilm(project);
    EXPECT_EQ(film.report.framesAppended, std::ceil(0.9 * GetParam()));
}

INSTANTIATE_TEST_SUITE_P(FramesASecond, ExportAtARate, testing::Values(1, 7, 24, 30, 60, 120));

} // namespace
} // namespace tavi::e2e
