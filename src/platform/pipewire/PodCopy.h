#pragma once

#include <cstdlib>
#include <cstring>
#include <memory>
#include <spa/pod/iter.h>

namespace tavi {

struct FreePod {
    void operator()(spa_pod* pod) const { std::free(pod); }
};

/// A parameter that is kept; never null but when made so.
using PodCopy = std::unique_ptr<spa_pod, FreePod>;

inline PodCopy copyPod(const spa_pod& pod) {
    const std::size_t bytes = SPA_POD_SIZE(&pod);
    auto* memory = static_cast<spa_pod*>(std::malloc(bytes));
    if (memory == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(memory, &pod, bytes);
    return PodCopy(memory);
}

} // namespace tavi
