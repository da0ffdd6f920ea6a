#include "base/SerialQueue.h"

#include "base/Clock.h"
#include "support/Eventually.h"

#include <gtest/gtest.h>

#include <atomic>
#include <numeric>
#include <unistd.h>
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

/// A pipe that a source reads.
class Pipe {
public:
    Pipe() { EXPECT_EQ(pipe(m_ends), 0); }
    ~Pipe() {
        close(m_ends[0]);
        close(m_ends[1]);
    }
    Pipe(const Pipe&) = delete;
    Pipe& operator=(const Pipe&) = delete;

    int descriptor() const { return m_ends[0]; }
    void put() const { EXPECT_EQ(write(m_ends[1], "x", 1), 1); }
    void take() const {
        char c = 0;
        EXPECT_EQ(read(m_ends[0], &c, 1), 1);
    }

private:
    int m_ends[2]{};
};

TEST(SerialQueue, sourceIsCalledOnceAtFirstAndThenWhenItsDescriptorIsReadable) {
    SerialQueue queue("com.tavi.test");
    const Pipe pipe;
    std::atomic<int> calls = 0;
    queue.setSource([&]() -> SerialQueue::Wait {
        EXPECT_TRUE(queue.isCurrent());
        if (calls++ > 0) {
            pipe.take();
        }
        return {.descriptor = pipe.descriptor()};
    });
    ASSERT_TRUE(test::eventually([&] { return calls == 1; }));
    pipe.put();
    ASSERT_TRUE(test::eventually([&] { return calls == 2; }));
    queue.sync([] {}); // blocks don't call it
    EXPECT_EQ(calls, 2);
    queue.setSource(nullptr);
    pipe.put();
    queue.sync([] {});
    EXPECT_EQ(calls, 2);
}

TEST(SerialQueue, sourceIsCalledWhenItsTimeIsOverAndNotBefore) {
    SerialQueue queue("com.tavi.test");
    const SystemClock clock;
    const auto now = [&] { return clock.hostTime().rescaled(MediaTime::kNanoseconds).value; };
    std::atomic<std::int64_t> due = 0;
    std::atomic<std::int64_t> called = 0;
    queue.setSource([&]() -> SerialQueue::Wait {
        if (due != 0) {
            called = now();
            return {};
        }
        due = now() + 30'000'000;
        return {.time = due};
    });
    ASSERT_TRUE(test::eventually([&] { return called != 0; }));
    EXPECT_GE(called, due);
    queue.setSource(nullptr);
}

TEST(SerialQueue, blocksRunWhileASourceWaits) {
    SerialQueue queue("com.tavi.test");
    const Pipe pipe;
    queue.setSource([&]() -> SerialQueue::Wait { return {.descriptor = pipe.descriptor()}; });
    int counter = 0; // guarded by the queue alone
    for (int i = 0; i < 1000; ++i) {
        queue.post([&] { ++counter; });
    }
    queue.sync([&] { EXPECT_EQ(counter, 1000); });
}

TEST(SerialQueue, endsWithASourceThatWaits) {
    std::atomic<int> counter = 0;
    {
        SerialQueue queue("com.tavi.test");
        queue.setSource([]() -> SerialQueue::Wait { return {}; });
        queue.post([&] { ++counter; });
    }
    EXPECT_EQ(counter, 1);
}

} // namespace tavi
