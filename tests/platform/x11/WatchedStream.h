#pragma once

#include "base/SerialQueue.h"
#include "platform/x11/X11ScreenStreams.h"
#include "platform/x11/XTestServer.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstring>
#include <memory>
#include <mutex>
#include <vector>

namespace tavi::test {

/// 0xAARRGGBB
inline std::uint32_t pixelAt(const PixelBuffer& image, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value, image.row(y) + static_cast<std::ptrdiff_t>(x) * 4, 4);
    return value;
}

/// 0xRRGGBB of an opaque picture, the fourth byte of which means nothing.
inline std::uint32_t colourAt(const PixelBuffer& image, int x, int y) {
    return pixelAt(image, x, y) & 0xFFFFFFU;
}

/// A running stream and what it sent.
class WatchedStream {
public:
    WatchedStream(const XTestServer& server, const ScreenFilter& filter, int width, int height) {
        auto made =
            X11ScreenStreams(server.name()).makeStream(filter, {.width = width, .height = height});
        EXPECT_TRUE(made) << made.error().description();
        m_stream = std::move(*made);
        EXPECT_TRUE(m_stream->addStreamOutput(m_queue, [this](const ScreenSample& sample) {
            const std::lock_guard lock(m_mutex);
            EXPECT_TRUE(m_queue.isCurrent());
            m_samples.push_back(sample);
            return !m_isRefusing;
        }));
        EXPECT_TRUE(m_stream->startCapture());
    }
    ~WatchedStream() { m_stream->stopCapture(); }
    WatchedStream(const WatchedStream&) = delete;
    WatchedStream& operator=(const WatchedStream&) = delete;

    std::vector<ScreenSample> samples() const {
        const std::lock_guard lock(m_mutex);
        return m_samples;
    }
    std::size_t count() const { return samples().size(); }
    PixelBufferPtr last() const { return samples().back().image; }
    ScreenStream& stream() const { return *m_stream; }

    /// Waits until the newest picture has this colour (0xRRGGBB) there.
    bool shows(int x, int y, std::uint32_t colour) const {
        return waitFor([&] { return hasPicture() && colourAt(*last(), x, y) == colour; });
    }

    /// Waits until the newest picture has this pixel (0xAARRGGBB) there.
    bool showsPixel(int x, int y, std::uint32_t pixel) const {
        return waitFor([&] { return hasPicture() && pixelAt(*last(), x, y) == pixel; });
    }

    /// Whether pictures that come from now on count as not used.
    void refuse(bool isRefusing) { m_isRefusing = isRefusing; }

private:
    bool hasPicture() const { return count() > 0; }

    std::atomic<bool> m_isRefusing = false;
    mutable std::mutex m_mutex;
    std::vector<ScreenSample> m_samples;
    SerialQueue m_queue{"test"};
    std::unique_ptr<ScreenStream> m_stream;
};

} // namespace tavi::test
