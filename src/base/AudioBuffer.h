#pragma once

#include <cstddef>
#include <memory>
#include <vector>

namespace tavi {

/// A stretch of sound in memory: 32-bit floats, full scale at 1, the channels
/// of one moment side by side in the order of the source.
struct AudioBuffer {
    int sampleRate = 0; ///< Hz.
    int channels = 0;
    std::vector<float> samples; ///< `channels` times frames().

    /// Moments in the buffer, one sample of each channel.
    std::size_t frames() const {
        return channels > 0 ? samples.size() / static_cast<std::size_t>(channels) : 0;
    }
};

/// Finished sound that may be shared between threads.
using AudioBufferPtr = std::shared_ptr<const AudioBuffer>;

} // namespace tavi
