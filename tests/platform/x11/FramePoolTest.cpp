#include "platform/x11/FramePool.h"

#include "platform/x11/XTestServer.h"

#include <gtest/gtest.h>

namespace tavi {
namespace {

class FramePoolTest : public testing::Test {
protected:
    test::XTestServer server{"64x64x24"};
    XConnection connection{XConnection::open(server.name()).value()};
    FramePool pool{FramePool::make(connection, 40, 30).value()};
};

TEST_F(FramePoolTest, newFrameIsStaleEverywhere) {
    const auto frame = pool.freeFrame(connection);
    ASSERT_TRUE(frame);
    EXPECT_EQ(frame->stale.bounds(), (PixelRect{0, 0, 40, 30}));
    EXPECT_EQ(frame->image.width(), 40);
    EXPECT_EQ(frame->image.data(), frame->memory.bytes().data());
}

TEST_F(FramePoolTest, frameThatIsLookedAtIsNotGivenAway) {
    const auto first = pool.freeFrame(connection);
    EXPECT_EQ(pool.freeFrame(connection), first) << "nobody looks at it yet";
    auto picture = FramePool::publish(first);
    const auto second = pool.freeFrame(connection);
    EXPECT_NE(second, first);
    EXPECT_EQ(pool.size(), 2U);
    auto copy = picture;
    picture.reset();
    EXPECT_NE(pool.freeFrame(connection), first) << "another owner is left";
    copy.reset();
    EXPECT_EQ(pool.freeFrame(connection), first);
    EXPECT_EQ(pool.size(), 2U);
}

TEST_F(FramePoolTest, eachFrameRemembersWhatItMissed) {
    const auto first = pool.freeFrame(connection);
    first->stale.clear();
    const auto held = FramePool::publish(first);
    pool.markStale(PixelRegion({1, 2, 3, 4}));
    const auto second = pool.freeFrame(connection);
    second->stale.clear();
    pool.markStale(PixelRegion({20, 20, 5, 5}));
    EXPECT_EQ(first->stale.pieces().size(), 2U);
    EXPECT_EQ(second->stale.bounds(), (PixelRect{20, 20, 5, 5}));
}

TEST(FramePoolLife, picturesOutliveThePoolAndTheConnection) {
    const test::XTestServer server("64x64x24");
    PixelBufferPtr survivor;
    {
        const auto connection = XConnection::open(server.name()).value();
        auto pool = FramePool::make(connection, 4, 4).value();
        survivor = FramePool::publish(pool.freeFrame(connection));
    }
    EXPECT_EQ(survivor->row(3)[15], 0);
}

} // namespace
} // namespace tavi
