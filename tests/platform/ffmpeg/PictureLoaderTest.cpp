#include "platform/ffmpeg/PictureLoader.h"

#include "platform/ffmpeg/HostDeadline.h"
#include "platform/ffmpeg/TestMedia.h"
#include "support/Eventually.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

namespace tavi::testing {
namespace {

constexpr int kRate = 30;
constexpr int kKeyPicture = 80;
constexpr int kGapAt = 70; ///< To the last picture but one before the key frame.

struct Film {
    const char* name;
    bool hasGap;
};

/// Key frames are decoded two pictures before they are shown, which lasts longer where some of
/// those before them are missing.
constexpr Film kFilms[] = {{"regular", false}, {"irregular", true}};

std::filesystem::path reordered(const Film& film) {
    return generated(std::string("loader-") + film.name + ".mov",
                     numberedSource(kRate, 4) +
                         (film.hasGap ? " -vf \"select='not(between(n,70,78))'\"" : "") +
                         " -fps_mode passthrough -pix_fmt yuv420p -c:v libx264 -bf 2 -g 250 "
                         "-sc_threshold 0 -force_key_frames 0,1.333,2.666");
}

/// A loader that is asked for its picture whenever it has something new, of an item that moves so
/// slowly that it stands where it is put.
class PictureLoaderOf : public ::testing::TestWithParam<Film> {
protected:
    void putAt(int picture, bool isJump) {
        constexpr double kCrawl = 1e-9;
        loader.setClock({kCrawl, {2 * picture + 1, 2 * kRate}, hostNow()}, isJump);
    }

    /// Waits until picture `wanted` is shown; all that were until then.
    std::vector<int> shownUntil(int wanted) {
        EXPECT_TRUE(test::eventually([&] { return note() == wanted; })) << wanted;
        const std::lock_guard lock(m_mutex);
        return std::exchange(m_shown, {});
    }

private:
    /// Asks for what is shown; -1 while that is unknown.
    int note() {
        const std::lock_guard lock(m_mutex);
        const DuePicture due = loader.due(hostNow());
        if (due.frame) {
            const double ticks = static_cast<double>(due.frame->best_effort_timestamp);
            const double seconds = ticks * av_q2d(loader.stream()->time_base);
            m_shown.push_back(static_cast<int>(std::lround(seconds * kRate)));
        }
        return due.frame ? m_shown.back() : -1;
    }

    std::mutex m_mutex;
    std::vector<int> m_shown;

protected:
    PictureLoader loader{{reordered(GetParam()), {}},
                         PlayerClock::standing({}),
                         {[](const ItemTimeline&) {}, [this] { note(); }}};
};

TEST_P(PictureLoaderOf, neverGoesBackHoweverLateItIsInPlaying) {
    constexpr int kFrom = 60;
    for (int late = kGapAt - 2; late <= kKeyPicture; ++late) {
        putAt(0, true);
        shownUntil(0);
        putAt(kFrom, true);
        shownUntil(kFrom);
        std::this_thread::sleep_for(std::chrono::milliseconds(110)); // Longer than kPatience.
        putAt(late, false);
        std::this_thread::sleep_for(std::chrono::milliseconds(20)); // The loader asks first.
        const bool isInGap = GetParam().hasGap && late >= kGapAt && late < kKeyPicture - 1;
        const std::vector<int> numbers = shownUntil(isInGap ? kGapAt - 1 : late);
        EXPECT_TRUE(std::is_sorted(numbers.begin(), numbers.end()));
        EXPECT_GE(numbers.front(), kFrom) << "late at " << late;
    }
}

INSTANTIATE_TEST_SUITE_P(Films, PictureLoaderOf, ::testing::ValuesIn(kFilms),
                         [](const auto& film) { return film.param.name; });

} // namespace
} // namespace tavi::testing
