#include "platform/x11/FramePool.h"

#include <gtest/gtest.h>

#include <random>

namespace tavi {
namespace {

bool areEqual(const PixelBuffer& a, const PixelBuffer& b) {
    for (int y = 0; y < a.height(); ++y) {
        if (std::memcmp(a.row(y), b.row(y), static_cast<std::size_t>(a.width()) * 4) != 0) {
            return false;
        }
    }
    return a.width() == b.width() && a.height() == b.height();
}

TEST(FramePool, everySnapshotEqualsItsSourceWhateverChangedAndWhateverIsHeld) {
    std::mt19937 random(7); // fixed seed: the same changes at every run
    const auto below = [&random](int end) {
        return static_cast<int>(random() % static_cast<unsigned>(end));
    };
    PixelBuffer source(40, 30);
    FramePool pool;
    std::vector<PixelBufferPtr> held;
    PixelRect changed{0, 0, 40, 30};
    for (int step = 0; step < 500; ++step) {
        auto snapshot = pool.snapshot(source, changed);
        ASSERT_TRUE(areEqual(*snapshot, source)) << "step " << step;
        held.push_back(std::move(snapshot));
        while (static_cast<int>(held.size()) > below(5)) {
            held.erase(held.begin() + below(static_cast<int>(held.size())));
        }
        changed = {below(40), below(30), 0, 0};
        changed.width = 1 + below(40 - changed.x);
        changed.height = 1 + below(30 - changed.y);
        for (int y = changed.y; y < changed.y + changed.height; ++y) {
            std::memset(source.row(y) + changed.x * 4, below(256),
                        static_cast<std::size_t>(changed.width) * 4);
        }
    }
    EXPECT_LE(pool.size(), 6U);
}

TEST(FramePool, pictureThatIsHeldDoesNotChange) {
    PixelBuffer source(4, 4);
    FramePool pool;
    const auto first = pool.snapshot(source, {0, 0, 4, 4});
    source.row(1)[4] = 99;
    const auto second = pool.snapshot(source, {1, 1, 1, 1});
    EXPECT_EQ(first->row(1)[4], 0);
    EXPECT_EQ(second->row(1)[4], 99);
}

TEST(FramePool, picturesOutliveThePool) {
    PixelBufferPtr survivor;
    {
        FramePool pool;
        survivor = pool.snapshot(PixelBuffer(4, 4), {0, 0, 4, 4});
    }
    EXPECT_EQ(survivor->row(3)[15], 0);
}

} // namespace
} // namespace tavi
