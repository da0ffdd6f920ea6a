#include "platform/ffmpeg/PlainMovie.h"

#include "platform/ffmpeg/TestMedia.h"
#include "platform/ffmpeg/TestSound.h"

#include <fmt/format.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <fstream>
#include <string_view>
#include <sys/resource.h>

namespace tavi {

namespace {

using namespace tavi::testing;
namespace fs = std::filesystem;
using Bytes = std::vector<char>;

/// Pictures with and without reordering, with and without sound, and how the
/// other writer lays out fragments.
struct Kind {
    const char* name;
    const char* options;
};

class PlainMovieOf : public ::testing::TestWithParam<Kind> {};

INSTANTIATE_TEST_SUITE_P(
    Kinds, PlainMovieOf,
    ::testing::Values(Kind{"plainFrames", "-an -bf 0 -movflags +empty_moov+default_base_moof"},
                      Kind{"reordered", "-an -bf 2 -movflags +delay_moov+default_base_moof"},
                      Kind{"sound", "-bf 0 -c:a aac -movflags +delay_moov+default_base_moof"},
                      Kind{"soundReordered",
                           "-bf 2 -c:a aac -movflags +delay_moov+default_base_moof"},
                      Kind{"absolute", "-bf 0 -c:a pcm_s16le -movflags +empty_moov"},
                      Kind{"omitted", "-bf 0 -c:a aac -movflags +delay_moov+omit_tfhd_offset"}),
    [](const auto& kind) { return kind.param.name; });

fs::path fragmented(const Kind& kind) {
    return generated(
        fmt::format("fragmented-{}.mov", kind.name),
        fmt::format(
            "-f lavfi -i testsrc=s=64x48:r=25:d=3 -f lavfi -i "
            "\"aevalsrc='{}':s=48000:d=2.5\" -c:v libx264 -g 10 {}+frag_keyframe+skip_trailer",
            bursts({0.5, 2.2}), kind.options));
}

Bytes contentOf(const fs::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

void write(const fs::path& file, const Bytes& bytes, std::size_t size) {
    std::ofstream stream(file, std::ios::binary | std::ios::trunc);
    stream.write(bytes.data(), static_cast<std::streamsize>(size));
}

/// Times and contents of everything that another program decodes.
std::string decoded(const fs::path& file) {
    return outputOf(fmt::format(
        "ffmpeg -nostdin -v error -copyts -i '{}' -map 0:v -fps_mode passthrough -enc_time_base -1 "
        "-f framemd5 - </dev/null | grep -v '^#' | cut -d, -f3,5-",
        file.string()));
}

std::string packetTimes(const fs::path& file) {
    return outputOf(fmt::format("ffprobe -v error -select_streams v -show_entries "
                                "packet=pts_time,size -of csv=p=0 '{}'",
                                file.string()));
}

fs::path copyOf(const fs::path& file, const std::string& name) {
    const fs::path copy = freshPath(name);
    fs::copy_file(file, copy);
    return copy;
}

} // namespace

TEST_P(PlainMovieOf, holdsWhatTheFragmentsHeld) {
    const fs::path before = fragmented(GetParam());
    const fs::path after = copyOf(before, "plain.mov");
    const auto made = makePlainMovie(after, {});
    ASSERT_TRUE(made) << made.error().description();
    EXPECT_EQ(boxesOf(after), "ftyp mdat moov");
    EXPECT_EQ(decoded(after), decoded(before));
    EXPECT_EQ(packetTimes(after), packetTimes(before));
    EXPECT_NEAR(std::stod(probe(after, "format=duration")), 3, 0.05);
    const auto asset = mediaLibrary().openAsset(after);
    ASSERT_TRUE(asset);
    if (!asset->audioTracks.empty()) {
        const Sound sound = readSound(after);
        EXPECT_NEAR(sound.loudest(0, 1), 0.5, 0.0001);
        EXPECT_NEAR(sound.loudest(2, 2.4), 2.2, 0.0001);
        EXPECT_EQ(sound.samples.size(), 120'000U);
        EXPECT_NEAR(decodedByCommand(after, 48000, 1).loudest(2, 2.4), 2.2, 0.0001);
    }
}

TEST_P(PlainMovieOf, canBeReadWheneverTheChangeIsInterrupted) {
    const fs::path before = fragmented(GetParam());
    const fs::path after = copyOf(before, "interrupted.mov");
    const std::string whole = decoded(before);
    const Bytes old = contentOf(before);
    ASSERT_TRUE(makePlainMovie(after, {}));
    const Bytes done = contentOf(after);
    Bytes between = done;
    std::copy(old.begin(), old.end(), between.begin());
    for (const std::size_t added :
         {std::size_t{1}, std::size_t{7}, std::size_t{8}, std::size_t{300},
          done.size() - old.size() - 1, done.size() - old.size()}) {
        write(after, between, old.size() + added);
        EXPECT_EQ(decoded(after), whole) << added;
        EXPECT_TRUE(mediaLibrary().openAsset(after)) << added;
    }
}

TEST_P(PlainMovieOf, isLeftAsItWasWithoutRoomForTheIndex) {
    const fs::path file = copyOf(fragmented(GetParam()), "noroom.mov");
    const Bytes before = contentOf(file);
    rlimit limit{};
    ::getrlimit(RLIMIT_FSIZE, &limit);
    const rlimit tight{before.size() + 100, limit.rlim_max};
    const auto old = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &tight);
    const auto made = makePlainMovie(file, {});
    ::setrlimit(RLIMIT_FSIZE, &limit);
    std::signal(SIGXFSZ, old);
    ASSERT_FALSE(made);
    EXPECT_EQ(made.error().kind, MediaError::Kind::cannotWrite);
    EXPECT_EQ(contentOf(file), before);
}

TEST_P(PlainMovieOf, isMadeOfWholeFragmentsOnly) {
    const fs::path file = copyOf(fragmented(GetParam()), "cut.mov");
    fs::resize_file(file, fs::file_size(file) - 1);
    const Bytes before = contentOf(file);
    EXPECT_FALSE(makePlainMovie(file, {}));
    EXPECT_EQ(contentOf(file), before);
}

TEST_P(PlainMovieOf, readsAGrowingMovieOnlyOnce) {
    const fs::path source = fragmented(GetParam());
    const Bytes whole = contentOf(source);
    const fs::path file = copyOf(source, "growing.mov");
    fs::resize_file(file, whole.size() / 2); // Somewhere in a fragment.
    const auto movie = PlainMovie::open(file);
    ASSERT_TRUE(movie) << movie.error().description();
    (*movie)->readMore();
    Bytes spoiled = whole;
    constexpr std::string_view kTables = "traf";
    const auto tables = std::search(spoiled.begin(), spoiled.end(), kTables.begin(), kTables.end());
    std::fill_n(tables, 16, '?');
    write(file, spoiled, spoiled.size());
    ASSERT_TRUE((*movie)->complete({}));
    EXPECT_EQ(decoded(file), decoded(source));
    EXPECT_EQ(packetTimes(file), packetTimes(source));
}

TEST(PlainMovieKinds, refusesWhatIsNoFragmentedMovie) {
    const fs::path plain = copyOf(generated("plainfilm.mp4", numberedSource(25, 1)), "film.mp4");
    const Bytes before = contentOf(plain);
    EXPECT_FALSE(makePlainMovie(plain, {}));
    EXPECT_EQ(contentOf(plain), before);
    EXPECT_FALSE(makePlainMovie(freshPath("nothing.mov"), {}));
    const fs::path text = freshPath("text.mov");
    std::ofstream(text) << "no movie at all, whatever its name says";
    EXPECT_FALSE(makePlainMovie(text, {}));
}

TEST(PlainMovieKinds, survivesAnyDamageToTheTables) {
    const fs::path source = fragmented({"sound", "-bf 0 -c:a aac -movflags "
                                                 "+delay_moov+default_base_moof"});
    const Bytes sane = contentOf(source);
    std::uint32_t state = 1;
    const auto random = [&] { return state = state * 1664525 + 1013904223; };
    for (int round = 0; round < 300; ++round) {
        Bytes bytes = sane;
        for (int i = 0; i < 8; ++i) {
            bytes[random() % std::min<std::size_t>(bytes.size(), 6000)] =
                static_cast<char>(random() >> 24);
        }
        const fs::path file = freshPath("damagedtables.mov");
        write(file, bytes, bytes.size());
        (void)makePlainMovie(file, {}); // Whatever it says, it ends and breaks no memory.
    }
}

TEST(MovieIndex, aTakeOfADayNeedsLongNumbers) {
    const fs::path source = fragmented({"plainFrames", "-an -bf 0 -movflags "
                                                       "+empty_moov+default_base_moof"});
    const fs::path file = copyOf(source, "long.mov");
    const std::int64_t day = std::int64_t{86'400} * 12'800; // In ticks of the track.
    ASSERT_TRUE(makePlainMovie(file, {{day}, std::nullopt}));
    EXPECT_NEAR(std::stod(probe(file, "format=duration")), 86'400, 4);
    EXPECT_EQ(packetTimes(file), packetTimes(source));
}

} // namespace tavi
