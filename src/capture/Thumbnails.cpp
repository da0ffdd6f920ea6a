#include "capture/Thumbnails.h"

#include <algorithm>
#include <atomic>
#include <thread>

namespace tavi {

std::map<int, PixelBufferPtr> takeThumbnails(Screenshots& screenshots,
                                             std::span<const ThumbnailRequest> requests) {
    std::vector<PixelBufferPtr> pictures(requests.size());
    std::atomic<std::size_t> next = 0;
    const auto work = [&] {
        for (std::size_t i = next++; i < requests.size(); i = next++) {
            const auto& [filter, configuration] = requests[i];
            pictures[i] = screenshots.captureImage(filter, configuration).value_or(nullptr);
        }
    };
    const std::size_t most = std::max(std::thread::hardware_concurrency(), 1U);
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < std::min(most, requests.size()); ++i) {
        threads.emplace_back(work);
    }
    for (auto& thread : threads) {
        thread.join();
    }
    std::map<int, PixelBufferPtr> taken;
    for (std::size_t i = 0; i < pictures.size(); ++i) {
        if (pictures[i]) {
            taken.emplace(static_cast<int>(i), std::move(pictures[i]));
        }
    }
    return taken;
}

} // namespace tavi
