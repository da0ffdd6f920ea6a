#include "base/SerialQueue.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <vector>

namespace tavi {

TEST(SerialQueue, runsBlocksOfManyThreadsOneAtATime) {
    SerialQueue queue("com.tavi.test");
    int counter = 0; // guarded by the queue alone
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t) {
        threads.emplace_back([&] {
            for (int i = 0; i < 1000; ++i) {
                queue.post([&] { ++counter; });
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    queue.sync([&] { EXPECT_EQ(counter, 4000); });
}

TEST(SerialQueue, keepsTheOrderOfOneThread) {
    std::vector<int> order;
    {
        SerialQueue queue("com.tavi.test");
        for (int i = 0; i < 100; ++i) {
            queue.post([&order, i] { order.push_back(i); });
        }
    }
    std::vector<int> expected(100);
    std::iota(expected.begin(), expected.end(), 0);
    EXPECT_EQ(order, expected);
}

TEST(SerialQueue, destructionRunsWhatWasPosted) {
    std::atomic<int> ran = 0;
    {
        SerialQueue queue("com.tavi.test");
        for (int i = 0; i < 10; ++i) {
            queue.post([&] { ++ran; });
        }
    }
    EXPECT_EQ(ran, 10);
}

TEST(SerialQueue, knowsItsOwnThread) {
    SerialQueue queue("com.tavi.test");
    EXPECT_FALSE(queue.isCurrent());
    queue.sync([&] { EXPECT_TRUE(queue.isCurrent()); });
}

} // namespace tavi
