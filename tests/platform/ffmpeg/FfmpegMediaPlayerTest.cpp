#include "platform/ffmpeg/HostDeadline.h"
#include "platform/ffmpeg/PlayerRig.h"

#include <ctime>
#include <random>
#include <thread>

namespace tavi::testing {
namespace {

namespace fs = std::filesystem;

constexpr int kRate = 30;
constexpr MediaTime kLead{1, 20}; ///< From a start to its tick, as the editor has it.

fs::path numberedFilm() {
    return generated("player.mov",
                     numberedSource(kRate, 4) + " -pix_fmt yuv420p -c:v libx264 -bf 2 -g 40");
}

class FfmpegMediaPlayerTest : public ::testing::Test, public PlayerRig {
protected:
    /// The tick at which it begins.
    MediaTime play(MediaTime from = {0, 600}) {
        const MediaTime tick = hostNow() + kLead;
        player().setRate(1, from, tick);
        return tick;
    }

    /// When the number that is shown begins, and the one after it.
    MediaTime begin(int number) const { return {number, kRate}; }
};

TEST_F(FfmpegMediaPlayerTest, playsToTheEndInTime) {
    show(numberedFilm());
    int early = 0;
    player().setPictureObserver([&] {
        shown().push_back(number());
        early += begin(number()) > player().currentTime();
    });
    int ends = 0;
    player().setEndObserver([&] { ++ends; });
    std::size_t most = 0;
    for (int turn = 1; turn <= 10 && most <= 1u * kRate; ++turn) { // The machine may be busy.
        player().seek({2, 1});
        ASSERT_TRUE(waitForNumber(2 * kRate));
        shown().clear();
        const MediaTime tick = play({2, 1});
        const MediaTime stands = player().currentTime();
        EXPECT_TRUE(stands == MediaTime(2, 1) || hostNow() > tick) << "stands until the tick";
        ASSERT_TRUE(main.runUntil([&] { return ends == turn; }));
        EXPECT_EQ(player().currentTime(), (MediaTime{4, 1}));
        ASSERT_TRUE(waitForNumber(4 * kRate - 1));
        main.runFor(0.1);
        EXPECT_EQ(ends, turn);
        EXPECT_EQ(early, 0) << "no picture before its time";
        EXPECT_TRUE(std::is_sorted(shown().begin(), shown().end()));
        most = std::max(most, shown().size());
    }
    EXPECT_GT(most, 1u * kRate) << "of two seconds";
}

TEST_F(FfmpegMediaPlayerTest, beginsAtTheTick) {
    show(numberedFilm());
    player().setRate(1, {1, 1}, hostNow() + MediaTime{1000, 1});
    ASSERT_TRUE(waitForNumber(kRate)) << "what it begins with is shown before";
    const MediaTime tick = hostNow() + MediaTime{3, 10};
    player().setRate(1, {1, 1}, tick);
    ASSERT_TRUE(main.runUntil([this] { return number() > kRate; }));
    EXPECT_GE(hostNow(), tick + MediaTime(1, kRate));
    const MediaTime now = player().currentTime();
    const MediaTime host = hostNow();
    EXPECT_LE(now, MediaTime(1, 1) + (host - tick));
}

TEST_F(FfmpegMediaPlayerTest, startsLateInItsPlace) {
    show(numberedFilm());
    player().setRate(1, {0, 1}, hostNow() - MediaTime{2, 1});
    ASSERT_TRUE(main.runUntil([this] { return number() > 0; }));
    EXPECT_GE(number(), 2 * kRate - 1) << "what should have been shown before is not";
}

TEST_F(FfmpegMediaPlayerTest, pausesOnThePictureInForce) {
    show(numberedFilm());
    play();
    ASSERT_TRUE(main.runUntil([this] { return number() > 20; }));
    player().pause();
    const MediaTime stands = player().currentTime();
    const int inForce = static_cast<int>(stands.seconds() * kRate + 1e-6);
    ASSERT_TRUE(waitForNumber(inForce));
    main.runFor(0.1);
    EXPECT_EQ(number(), inForce);
    EXPECT_EQ(player().currentTime(), stands);
    player().pause();
    EXPECT_EQ(player().currentTime(), stands) << "twice is once";
}

TEST_F(FfmpegMediaPlayerTest, rateZeroStandsAtTheTime) {
    show(numberedFilm());
    for (const double rate : {0.0, -1.0, std::nan("")}) {
        player().setRate(rate, {2, 1}, hostNow());
        EXPECT_TRUE(waitForNumber(2 * kRate));
        EXPECT_EQ(player().currentTime(), (MediaTime{2, 1}));
        player().seek({1, 1});
        EXPECT_TRUE(waitForNumber(kRate));
    }
}

TEST_F(FfmpegMediaPlayerTest, playsOnFromASeek) {
    show(numberedFilm());
    play();
    ASSERT_TRUE(main.runUntil([this] { return number() > 5; }));
    shown().clear();
    player().seek({5, 2});
    EXPECT_GE(player().currentTime(), (MediaTime{5, 2}));
    EXPECT_LT(player().currentTime(), (MediaTime{3, 1}));
    ASSERT_TRUE(main.runUntil([this] { return number() > 5 * kRate / 2 + 3; }));
    for (const int number : shown()) {
        EXPECT_TRUE(number < kRate || number >= 5 * kRate / 2) << number;
    }
}

TEST_F(FfmpegMediaPlayerTest, otherRatesScaleTime) {
    show(numberedFilm());
    const MediaTime tick = hostNow() + kLead;
    player().setRate(2, {0, 1}, tick);
    ASSERT_TRUE(main.runUntil([this] { return number() >= 3 * kRate; }));
    EXPECT_GE(hostNow(), tick + MediaTime(3, 2));
    const MediaTime began = hostNow();
    player().setRate(0.5, {1, 1}, began);
    ASSERT_TRUE(main.runUntil([this] { return number() > kRate + 2 && number() < 2 * kRate; }));
    EXPECT_GE(hostNow() - began, (MediaTime{2 * 3, kRate}));
}

TEST_F(FfmpegMediaPlayerTest, ticksWhileItPlaysAndAfterSeeks) {
    show(numberedFilm());
    std::vector<MediaTime> times;
    player().setPeriodicTimeObserver({1, 30}, [&](MediaTime time) { times.push_back(time); });
    main.runFor(0.15);
    EXPECT_TRUE(times.empty()) << "it stands";
    player().seek({3, 2});
    EXPECT_TRUE(times.empty()) << "never from inside an operation";
    ASSERT_TRUE(main.runUntil([&] { return times.size() == 1; }));
    EXPECT_EQ(times.front(), (MediaTime{3, 2}));
    times.clear();
    play({3, 2});
    ASSERT_TRUE(main.runUntil([&] { return player().currentTime() > MediaTime(5, 2); }));
    player().pause();
    main.runFor(0.1); // What was on its way.
    const std::size_t count = times.size();
    EXPECT_LE(count, 33u);
    EXPECT_GE(count, 8u) << "30 a second, fewer on a busy machine";
    EXPECT_TRUE(std::is_sorted(times.begin(), times.end()));
    main.runFor(0.15);
    EXPECT_EQ(times.size(), count);
    player().setPeriodicTimeObserver({1, 30}, {});
    player().seek({0, 1});
    main.runFor(0.1);
    EXPECT_EQ(times.size(), count);
}

TEST_F(FfmpegMediaPlayerTest, everyTickTellsTheTimeOfItsCall) {
    show(numberedFilm());
    int ticks = 0;
    player().setPeriodicTimeObserver({1, 30}, [&](MediaTime time) {
        ++ticks;
        EXPECT_LE(time, player().currentTime());
    });
    play();
    std::this_thread::sleep_for(std::chrono::milliseconds(500)); // A main thread that is busy.
    EXPECT_TRUE(main.runUntil([&] { return ticks > 0; }));
    const int afterwards = ticks;
    EXPECT_LE(afterwards, 2) << "ticks don't pile up";
    EXPECT_TRUE(main.runUntil([&] { return ticks > 5; }));
}

TEST_F(FfmpegMediaPlayerTest, twoThatStartTogetherStayTogether) {
    const fs::path film = generated("longplayer.mov", numberedSource(kRate, 7) +
                                                          " -pix_fmt yuv420p -c:v libx264 -g 30");
    show(film);
    const auto second = players().makePlayer({film, DelayedTrack{{0, {}, {}}, {6, 1}, {1, 2}}});
    ASSERT_TRUE(main.runUntil([&] { return true; }));
    int compared = 0;
    int together = 0;
    player().setPeriodicTimeObserver({1, 30}, [&](MediaTime) {
        const PixelBufferPtr other = second->currentPicture();
        if (other) {
            ++compared;
            together += std::abs(number() - (numberIn(*other) + kRate / 2)) <= 1;
        }
    });
    // A busy machine is late now and then; who are not in step never are.
    const auto areTogether = [&] { return compared > 60 && together >= compared * 9 / 10; };
    for (int turn = 0; turn < 6 && !areTogether(); ++turn) {
        compared = 0;
        together = 0;
        const MediaTime tick = hostNow() + kLead;
        player().setRate(1, {0, 1}, tick);
        second->setRate(1, {0, 1}, tick);
        ASSERT_TRUE(main.runUntil([&] { return player().currentTime() >= MediaTime(6, 1); }));
    }
    EXPECT_TRUE(areTogether()) << together << " of " << compared;
}

TEST_F(FfmpegMediaPlayerTest, delayedTrackIsEmptyBeforeItsStart) {
    const DelayedTrack track{{0, {}, {}}, {2, 1}, {7, 10}};
    open(PlayerItem{numberedFilm(), track});
    const auto expectAt = [this](MediaTime time, int wanted) {
        player().seek(time);
        EXPECT_TRUE(waitForNumber(wanted)) << time.seconds() << ": " << number();
    };
    expectAt({7, 10}, 0);
    expectAt({69, 100}, kNoPicture);
    expectAt({22, 10}, 3 * kRate / 2);
    expectAt({0, 10}, kNoPicture);
    expectAt({27, 10}, 2 * kRate - 1);
    EXPECT_EQ(player().currentTime(), (MediaTime{27, 10}));
    expectAt({100, 1}, 2 * kRate - 1);
    EXPECT_EQ(player().currentTime(), (MediaTime{27, 10})) << "the item ends with the track";
    expectAt({6999, 10000}, kNoPicture);
    int ends = 0;
    player().setEndObserver([&] { ++ends; });
    play({6, 10});
    ASSERT_TRUE(main.runUntil([this] { return number() > 0; })) << "begins while it plays";
    player().seek({26, 10});
    EXPECT_TRUE(main.runUntil([&] { return ends == 1; }));
}

TEST_F(FfmpegMediaPlayerTest, playsAnotherItem) {
    show(numberedFilm());
    play();
    ASSERT_TRUE(main.runUntil([this] { return number() > 5; }));
    shown().clear();
    player().replaceCurrentItem({numberedFilm(), DelayedTrack{{0, {}, {}}, {4, 1}, {1, 1}}});
    EXPECT_EQ(player().currentTime(), (MediaTime{0, 1}));
    EXPECT_EQ(number(), kNoPicture);
    EXPECT_TRUE(shown().empty()) << "never from inside an operation";
    ASSERT_TRUE(main.runUntil([this] { return !shown().empty(); }));
    EXPECT_EQ(shown().front(), kNoPicture);
    player().seek({2, 1});
    EXPECT_TRUE(waitForNumber(kRate));
    EXPECT_EQ(player().currentTime(), (MediaTime{2, 1})) << "paused";
}

TEST_F(FfmpegMediaPlayerTest, observersMayEndThePlayer) {
    for (int round = 0; round < 4; ++round) {
        show(numberedFilm());
        player().setPeriodicTimeObserver({1, 30}, [&, round](MediaTime) {
            if (round == 0) {
                close();
            }
        });
        bool isGone = false;
        player().setPictureObserver([&, round] {
            if (round == 1) {
                close();
            }
        });
        player().setEndObserver([&] {
            isGone = true;
            close();
        });
        player().setRate(1, {round < 2 ? 0 : 39, 10}, hostNow());
        if (round >= 2) {
            ASSERT_TRUE(main.runUntil([&] { return isGone; }));
        }
        main.runFor(0.2);
    }
}

TEST_F(FfmpegMediaPlayerTest, maySayGoodbyeAtAnyMoment) {
    std::mt19937 random(11);
    std::uniform_int_distribution<int> wait(0, 30'000); // microseconds
    for (int i = 0; i < 40; ++i) {
        open(numberedFilm());
        if (i % 2 == 0) {
            play({i, 10});
        }
        std::this_thread::sleep_for(std::chrono::microseconds(wait(random)));
        player().seek({i, 15});
        if (i % 3 == 0) {
            player().replaceCurrentItem({numberedFilm(), {}});
        }
        close();
        main.runFor(0.001);
    }
}

double processSeconds() {
    timespec time{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_nsec) * 1e-9;
}

TEST_F(FfmpegMediaPlayerTest, costsNothingWhileItStands) {
    show(numberedFilm());
    player().setPeriodicTimeObserver({1, 30}, [](MediaTime) {});
    player().seek({3, 2});
    ASSERT_TRUE(waitForNumber(3 * kRate / 2));
    // A busy machine is done with what follows a seek somewhat later.
    EXPECT_TRUE(main.runUntil([] {
        const double before = processSeconds();
        std::this_thread::sleep_for(std::chrono::seconds(1));
        return processSeconds() - before < 0.002;
    }));
}

TEST_F(FfmpegMediaPlayerTest, neverHoldsTheMainThread) {
    // Every seek into this film decodes hundreds of pictures.
    show(generated("heavy.mov", "-f lavfi -i testsrc2=s=1280x720:r=60:d=8 -pix_fmt yuv420p -c:v "
                                "libx264 -preset ultrafast -g 1000"));
    std::mt19937 random(12);
    std::uniform_int_distribution<std::int64_t> any(0, 4800);
    std::vector<double> seconds;
    const auto timed = [&](const std::function<void()>& operation) {
        const MediaTime before = hostNow();
        operation();
        seconds.push_back((hostNow() - before).seconds());
    };
    for (int i = 0; i < 60; ++i) {
        timed([&] { player().seek({any(random), 600}); });
        main.runFor(0.005);
        timed([&] { player().setRate(1, {any(random), 600}, hostNow()); });
        timed([&] { player().currentPicture(); });
        timed([&] { player().pause(); });
        if (i % 20 == 0) {
            timed([&] { player().replaceCurrentItem({mediaFolder() / "heavy.mov", {}}); });
        }
    }
    timed([&] { close(); });
    std::sort(seconds.begin(), seconds.end());
    RecordProperty("worstMicroseconds", static_cast<int>(seconds.back() * 1e6));
    EXPECT_LT(seconds[seconds.size() * 9 / 10], 0.005) << "of operations; a decode takes longer";
}

/// While seeks come faster than they can be served the picture follows all the same.
TEST_F(FfmpegMediaPlayerTest, thePictureFollowsThePointer) {
    show(generated("heavy.mov", "-f lavfi -i testsrc2=s=1280x720:r=60:d=8 -pix_fmt yuv420p -c:v "
                                "libx264 -preset ultrafast -g 1000"));
    int pictures = 0;
    player().setPictureObserver([&] { ++pictures; });
    std::mt19937 random(13);
    std::uniform_int_distribution<std::int64_t> any(2400, 4800);
    EXPECT_TRUE(main.runUntil([&] {
        player().seek({any(random), 600});
        return pictures >= 5;
    }));
}

} // namespace
} // namespace tavi::testing
