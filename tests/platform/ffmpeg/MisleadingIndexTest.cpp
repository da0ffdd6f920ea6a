#include "platform/ffmpeg/MovieBoxes.h"
#include "platform/ffmpeg/PlayerRig.h"
#include "platform/ffmpeg/VideoDecoder.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kRate = 30;
constexpr MediaTime kTick{1, MediaTime::kNanoseconds};
constexpr const char* kForward = "libx264 -bf 0 -g 8";

/// Pictures at unequal distances.
fs::path irregular(const std::string& ending, const std::string& encoder) {
    return generated("index-" + ending,
                     numberedSource(kRate, 2) +
                         " -vf \"select='not(between(n,15,17)+between(n,29,32)+eq(mod(n,7),3))'\" "
                         "-fps_mode passthrough -pix_fmt yuv420p -c:v " +
                         encoder);
}

/// A stretch of a film in 30ths of a second; `from` kNothing: one without pictures.
struct Part {
    static constexpr int kNothing = -1;

    int from;
    int count;
};

MovieBox editList(const std::vector<Part>& parts) {
    constexpr std::uint64_t kNormalSpeed = 0x10000;
    BoxWriter list;
    list.u32(0).u32(parts.size());
    for (const Part& part : parts) {
        list.u32(static_cast<std::uint64_t>(part.count));
        list.u32(static_cast<std::uint64_t>(part.from)).u32(kNormalSpeed);
    }
    return {fourCC("edts"), {}, {{fourCC("elst"), list.take(), {}}}};
}

void setLength(MovieBox& movie, const std::vector<Part>& parts) {
    constexpr std::ptrdiff_t kLength = 16; // In the movie's header.
    std::uint64_t sum = 0;
    for (const Part& part : parts) {
        sum += static_cast<std::uint64_t>(part.count);
    }
    const auto length = BoxWriter().u32(sum).take();
    std::copy(length.begin(), length.end(), movie.child(fourCC("mvhd"))->content.begin() + kLength);
}

/// A film that is put together of parts of another by its edit list alone.
fs::path inParts(const std::vector<Part>& parts) {
    const fs::path whole = irregular(
        "whole.mov", std::string(kForward) + " -video_track_timescale 30 -movie_timescale 30");
    std::ifstream in(whole, std::ios::binary);
    const std::vector<std::uint8_t> bytes(std::istreambuf_iterator<char>(in), {});
    std::vector<std::uint8_t> edited;
    for (MovieBox& box : parseBoxes(bytes)) {
        if (MovieBox* track = box.child(fourCC("trak"))) {
            setLength(box, parts);
            track->remove(fourCC("edts"));
            track->children.insert(track->children.begin() + 1, editList(parts));
        }
        appendBox(edited, box); // The index lies behind the pictures, which stay in their place.
    }
    fs::path file = freshPath("parts.mov");
    std::ofstream(file, std::ios::binary)
        .write(reinterpret_cast<const char*>(edited.data()),
               static_cast<std::streamsize>(edited.size()));
    return file;
}

/// A film whose index was written before its pictures, of which the bytes from a share of the
/// whole on were lost, or only a few there.
fs::path broken(double share, bool isCut) {
    const fs::path whole = irregular("first.mov", std::string(kForward) + " -movflags +faststart");
    fs::path file = freshPath("broken.mov");
    fs::copy_file(whole, file);
    const auto from = static_cast<std::uintmax_t>(static_cast<double>(fs::file_size(file)) * share);
    if (isCut) {
        fs::resize_file(file, from);
    } else {
        std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
        stream.seekp(static_cast<std::streamoff>(from));
        stream << std::string(fs::file_size(file) / 10, '\xff');
    }
    return file;
}

struct Film {
    const char* name;
    std::function<fs::path()> make;
};

std::vector<Film> films() {
    const std::string forward = kForward;
    return {
        {"whole", [=] { return irregular("whole.mov", forward); }},
        {"shownLaterThanDecoded",
         [=] { return irregular("offset.mov", forward + " -bsf:v setts=pts=PTS+2048"); }},
        {"beginsWithNothing",
         [] {
             return inParts({{Part::kNothing, 12}, {0, 60}});
         }},
        {"beginsBetweenKeyFrames",
         [] {
             return inParts({{21, 30}});
         }},
        {"pausesInTheMiddle",
         [] {
             return inParts({{0, 14}, {Part::kNothing, 9}, {14, 40}});
         }},
        {"leavesOut",
         [] {
             return inParts({{5, 31}, {47, 8}});
         }},
        {"goesBack",
         [] {
             return inParts({{31, 13}, {28, 25}});
         }},
        {"isInFourParts",
         [] {
             return inParts({{44, 4}, {27, 4}, {6, 13}, {32, 5}});
         }},
        {"emptyPackets", [] { return irregular("gaps.avi", "mjpeg -q:v 2"); }},
        {"reorderedWithoutAWord", [] { return irregular("b.avi", "mpeg4 -bf 2 -q:v 1"); }},
        {"hiddenPictures",
         [] { return irregular("vp9.mp4", "libvpx-vp9 -crf 10 -b:v 0 -cpu-used 8 -g 20"); }},
        {"damaged", [] { return broken(0.5, false); }},
        {"cutShort", [] { return broken(0.8, true); }},
    };
}

/// Films whose index tells less of their pictures' times than it seems to.
class MisleadingIndex : public ::testing::TestWithParam<Film> {};

TEST_P(MisleadingIndex, isNotBelievedBeyondTheNextPicture) {
    const auto decoder = VideoDecoder::open(GetParam().make(), 0, DecoderUse::jumps).value();
    std::optional<MediaTime> told;
    int count = 0;
    for (; decoder->next(); ++count) {
        EXPECT_LE(told.value_or(decoder->time()), decoder->time()) << count;
        told = decoder->timeOfNext();
    }
    EXPECT_GT(count, 10);
}

/// Each time anew, so that nothing that was decoded before helps.
TEST_P(MisleadingIndex, showsWhatIsReadAtEveryTime) {
    const fs::path file = GetParam().make();
    const FilmContent content(file);
    PlayerRig rig;
    for (const auto& picture : content.pictures()) {
        for (const MediaTime time : {picture.time - kTick, picture.time}) {
            rig.open(file);
            rig.player().seek(time);
            const int wanted = content.at(time).number;
            ASSERT_TRUE(rig.waitForNumber(wanted)) << time.seconds() << ": " << rig.number();
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Films, MisleadingIndex, ::testing::ValuesIn(films()),
                         [](const auto& film) { return film.param.name; });

} // namespace
} // namespace tavi::testing
