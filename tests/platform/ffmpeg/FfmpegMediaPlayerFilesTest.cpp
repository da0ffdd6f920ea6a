#include "platform/ffmpeg/HostDeadline.h"
#include "platform/ffmpeg/PlayerRig.h"

#include <fstream>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

class PlayerFiles : public ::testing::Test, public PlayerRig {
protected:
    /// Plays the last part of an item; false when it does not come to an end.
    bool playsToItsEnd(MediaTime from) {
        bool isAtEnd = false;
        player().setEndObserver([&] { isAtEnd = true; });
        player().setRate(1, from, hostNow());
        const bool ends = main.runUntil([&] { return isAtEnd; });
        player().setEndObserver({});
        return ends;
    }

    /// The first `share` of a file's bytes.
    static fs::path cutShort(const fs::path& file, double share) {
        fs::path cut = freshPath("short-" + file.filename().string());
        fs::copy_file(file, cut);
        fs::resize_file(
            cut, static_cast<std::uintmax_t>(static_cast<double>(fs::file_size(file)) * share));
        return cut;
    }

    static fs::path forward(const std::string& more = {}) {
        return generated("forward" + std::to_string(more.size()) + ".mov",
                         numberedSource(30, 2) + " -pix_fmt yuv420p -c:v libx264 -bf 0 -g 20 " +
                             more);
    }
};

/// Neither picture nor end, and no harm done.
class PlayerUnreadable : public PlayerFiles, public ::testing::WithParamInterface<const char*> {
protected:
    static fs::path path(const std::string& name) {
        fs::path file = freshPath(name);
        if (name == "folder") {
            fs::create_directory(file);
        } else if (name == "empty.mov") {
            std::ofstream{file};
        } else if (name == "text.mov") {
            std::ofstream(file) << "#EXTM3U\nforward.mov\n";
        } else if (name == "noindex.mov") {
            file = cutShort(forward(), 0.5);
        }
        return file;
    }
};

TEST_P(PlayerUnreadable, hasNoPictureAndNoEnd) {
    open(path(GetParam()));
    bool isAtEnd = false;
    player().setEndObserver([&] { isAtEnd = true; });
    player().seek({1, 1});
    EXPECT_EQ(player().currentTime(), (MediaTime{1, 1}));
    player().setRate(1, {100, 1}, hostNow());
    main.runFor(0.2);
    EXPECT_GT(player().currentTime(), (MediaTime{100, 1})) << "its time runs all the same";
    EXPECT_FALSE(isAtEnd);
    EXPECT_EQ(number(), kNoPicture);
    EXPECT_TRUE(shown().empty());
}

INSTANTIATE_TEST_SUITE_P(Files, PlayerUnreadable,
                         ::testing::Values("missing.mov", "folder", "empty.mov", "text.mov",
                                           "noindex.mov"));

TEST_F(PlayerFiles, canBeReplacedWhenUnreadable) {
    open("/nowhere/missing.mov");
    main.runFor(0.05);
    player().replaceCurrentItem({forward(), {}});
    EXPECT_TRUE(waitForNumber(0));
}

TEST_F(PlayerFiles, aFileCutShortShowsWhatItHas) {
    const fs::path whole = forward("-movflags +faststart");
    open(cutShort(whole, 0.6));
    player().seek({19, 10});
    ASSERT_TRUE(main.runUntil([this] { return number() > 10; }));
    main.runFor(0.2);
    const int last = number();
    EXPECT_LT(last, 50);
    player().seek({1, 6});
    EXPECT_TRUE(waitForNumber(5));
    EXPECT_TRUE(playsToItsEnd({17, 10})) << "it is as long as it says";
    EXPECT_EQ(player().currentTime(), (MediaTime{2, 1}));
    EXPECT_EQ(number(), last);
}

TEST_F(PlayerFiles, aDamagedStretchIsLeftOut) {
    const fs::path file = freshPath("damaged.mov");
    fs::copy_file(forward(), file);
    std::fstream stream(file, std::ios::in | std::ios::out | std::ios::binary);
    const auto size = static_cast<std::streamoff>(fs::file_size(file));
    stream.seekp(size / 4);
    stream << std::string(static_cast<std::size_t>(size / 20), '\xff');
    stream.close();
    open(file);
    player().seek({59, 30});
    EXPECT_TRUE(waitForNumber(59));
    player().seek({0, 1});
    EXPECT_TRUE(waitForNumber(0));
    EXPECT_TRUE(playsToItsEnd({0, 1}));
}

TEST_F(PlayerFiles, soundAloneHasAnEndButNoPicture) {
    open(generated("soundalone.mp4", "-f lavfi -i sine=d=0.4 -c:a aac"));
    EXPECT_TRUE(playsToItsEnd({0, 1}));
    EXPECT_GE(player().currentTime(), (MediaTime{4, 10}));
    EXPECT_EQ(number(), kNoPicture);
}

TEST_F(PlayerFiles, onePictureStaysForTheWholeFilm) {
    show(generated("one.mov", numberedSource(2, 0.5) + " -pix_fmt yuv420p -c:v libx264"));
    EXPECT_EQ(number(), 0);
    EXPECT_TRUE(playsToItsEnd({0, 1}));
    EXPECT_EQ(player().currentTime(), (MediaTime{1, 2}));
    player().seek({1, 4});
    main.runFor(0.05);
    EXPECT_EQ(shown(), std::vector<int>{0});
}

TEST_F(PlayerFiles, emptyTracksHaveNoPicture) {
    open(generated("nopackets.mov", "-f lavfi -i color=d=1:r=10:s=64x48 -t 0 -c:v libx264"));
    player().setRate(1, {0, 1}, hostNow());
    main.runFor(0.2);
    EXPECT_EQ(number(), kNoPicture);
}

struct SizeCase {
    const char* name;
    const char* size;
    const char* arguments;
    int width;
    int height;
};

class PlayerSizes : public PlayerFiles, public ::testing::WithParamInterface<SizeCase> {};

TEST_P(PlayerSizes, areShownAsTheyAre) {
    const SizeCase& film = GetParam();
    show(generated(film.name, numberedSource(30, 1, film.size) + " " + film.arguments));
    player().seek({1, 3});
    ASSERT_TRUE(waitForNumber(10));
    const PixelBufferPtr picture = player().currentPicture();
    EXPECT_EQ(picture->width(), film.width);
    EXPECT_EQ(picture->height(), film.height);
}

INSTANTIATE_TEST_SUITE_P(
    Films, PlayerSizes,
    ::testing::Values(SizeCase{"odd.mov", "63x47", "-c:v libx264 -pix_fmt yuv444p", 63, 47},
                      SizeCase{"odd420.mkv", "63x47", "-c:v ffv1 -pix_fmt yuv420p", 63, 47},
                      SizeCase{"tall.mov", "48x200", "-c:v libx264 -pix_fmt yuv420p", 48, 200}));

/// The halves of a numbered picture lie one above the other once it is turned.
TEST_F(PlayerFiles, turnsPicturesAsTheyAreTagged) {
    const fs::path upright =
        generated("upright.mov", numberedSource(30, 1) + " -pix_fmt yuv420p -c:v libx264 -bf 0");
    const fs::path turned =
        generated("turned.mov", "-i '" + upright.string() + "' -c copy -metadata:s:v:0 rotate=90");
    open(turned);
    player().seek({9, 10});
    ASSERT_TRUE(main.runUntil([this] { return player().currentPicture() != nullptr; }));
    main.runUntil([this] { return shown().size() > 1; }, 1);
    const PixelBufferPtr picture = player().currentPicture();
    EXPECT_EQ(picture->width(), 48);
    EXPECT_EQ(picture->height(), 64);
    const auto seen = imageGenerator().copyImage(turned, {9, 10}, {1000, 1000});
    ASSERT_TRUE(seen);
    for (const auto& [x, y] : {std::pair{10, 10}, std::pair{40, 10}, std::pair{10, 60}}) {
        EXPECT_EQ(colourAt(*picture, x, y), colourAt(**seen, x, y)) << x << ", " << y;
    }
    EXPECT_NE(colourAt(*picture, 24, 10), colourAt(*picture, 24, 54));
}

TEST_F(PlayerFiles, anEditListMovesTheFilm) {
    // The first half second is cut off without encoding anew: pictures before it are only decoded.
    const fs::path file = generated("edited.mov", "-ss 0.5 -i '" + forward().string() +
                                                      "' -c copy -avoid_negative_ts disabled");
    const FilmContent content(file);
    show(file);
    for (int n = 0; n < 40; ++n) {
        const MediaTime time{n, 30};
        player().seek(time);
        EXPECT_TRUE(waitForNumber(content.at(time).number)) << n;
    }
}

} // namespace
} // namespace tavi::testing
