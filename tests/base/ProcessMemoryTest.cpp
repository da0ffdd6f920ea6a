#include "base/ProcessMemory.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <memory>
#include <string>
#include <thread>
#include <vector>

// Sanitizers bring memory of their own, which they keep on purpose.
#if !defined(__SANITIZE_ADDRESS__) && !defined(__SANITIZE_THREAD__)

namespace tavi {
namespace {

using Block = std::unique_ptr<char[]>;

constexpr std::size_t kMegabyte = 1 << 20;

/// What the process holds, in megabytes.
std::size_t held() {
    std::ifstream file("/proc/self/smaps_rollup");
    std::string word;
    while (file >> word && word != "Anonymous:") {
    }
    std::size_t kilobytes = 0;
    file >> kilobytes;
    return kilobytes / 1024;
}

Block filled(std::size_t bytes) {
    Block block(new char[bytes]);
    std::fill_n(block.get(), bytes, 'x');
    return block;
}

/// Threads that each make blocks of a size with something small behind each, which lives on.
std::vector<Block> workOf(int threads, std::size_t bytes, int blocks) {
    std::vector<std::vector<Block>> kept(static_cast<std::size_t>(threads));
    std::vector<std::thread> running;
    for (auto& rest : kept) {
        running.emplace_back([&rest, bytes, blocks] {
            std::vector<Block> freed;
            for (int i = 0; i < blocks; ++i) {
                freed.push_back(filled(bytes));
                rest.push_back(filled(64));
            }
        });
    }
    for (std::thread& thread : running) {
        thread.join();
    }
    std::vector<Block> all;
    for (auto& rest : kept) {
        std::move(rest.begin(), rest.end(), std::back_inserter(all));
    }
    return all;
}

/// Ends the process well where it holds little more than `before`, in megabytes.
[[noreturn]] void endWellUnlessMoreThan(std::size_t before) {
    const std::size_t now = held();
    std::cerr << before << " MB before, " << now << " MB now\n";
    std::_Exit(now < before + 16 ? 0 : 1);
}

/// Each in a process of its own, whose pools nobody has used.
class ProcessMemory : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    const testing::ExitedWithCode m_well{0};
};

TEST_F(ProcessMemory, picturesOfThreadsThatEndedGoBackAtOnce) {
    EXPECT_EXIT(
        {
            keepLargeBlocksApart();
            workOf(1, 3 * kMegabyte, 1); // a C library left to itself learns from it
            const std::size_t before = held();
            const auto rest = workOf(8, 2 * kMegabyte, 8); // 128 MB at most
            endWellUnlessMoreThan(before);
        },
        m_well, "");
}

TEST_F(ProcessMemory, whatIsFreeBetweenSmallThingsGoesBackWhenAsked) {
    EXPECT_EXIT(
        {
            keepLargeBlocksApart();
            const std::size_t before = held();
            const auto rest = workOf(8, kMegabyte / 4, 40); // 80 MB
            giveFreeMemoryBack();
            endWellUnlessMoreThan(before);
        },
        m_well, "");
}

} // namespace
} // namespace tavi

#endif
