#pragma once

#include "base/Clock.h"
#include "fakes/FakeExecutor.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/portal/CastStream.h"
#include "platform/portal/FakeCast.h"
#include "render/YuvConverter.h"

#include <gtest/gtest.h>

#include <cstring>
#include <future>
#include <stdexcept>

namespace tavi::test {

inline constexpr std::uint32_t kGreen = 0xFF20C040;
inline constexpr std::uint32_t kViolet = 0xFF6020A0;

inline CastFrame plain(std::uint32_t colour) {
    CastFrame frame;
    frame.pixel = [colour](int, int) { return colour; };
    return frame;
}

inline CastFrame halves(std::uint32_t left, std::uint32_t right, int border) {
    CastFrame frame;
    frame.pixel = [=](int x, int) { return x < border ? left : right; };
    return frame;
}

inline CastFrame pointerOnly(CastPointerNews news) {
    CastFrame frame;
    frame.pointer.push_back(std::move(news));
    return frame;
}

inline std::uint32_t pixel(const ScreenSample& sample, int x, int y) {
    std::uint32_t value = 0;
    std::memcpy(&value, sample.image->row(y) + std::ptrdiff_t{x} * 4, sizeof value);
    return value;
}

/// Largest difference of a channel, the fourth byte left out.
inline int distance(std::uint32_t a, std::uint32_t b) {
    int largest = 0;
    for (int shift = 0; shift < 24; shift += 8) {
        largest = std::max(largest, std::abs(static_cast<int>(a >> shift & 255) -
                                             static_cast<int>(b >> shift & 255)));
    }
    return largest;
}

/// A stream over a private PipeWire from a compositor that the test plays.
class CastOfACompositor : public testing::Test {
protected:
    ~CastOfACompositor() override { stop(); }

    /// Opens the stream; its first picture is `first`.
    void open(const CastLayout& layout, const CastFrame& first = plain(kGreen),
              FakeCast::Metas metas = FakeCast::Metas::all, CastAlpha alpha = CastAlpha::unwanted) {
        cast = std::make_unique<FakeCast>(layout, metas);
        auto opening = std::async(std::launch::async, [this, alpha] {
            return CastStream::open(FakeCast::openRemote(), cast->node(),
                                    {std::make_shared<YuvConverter>(), pointer}, alpha);
        });
        const bool isRead = cast->waitForReader();
        EXPECT_TRUE(cast->send(first));
        auto opened = opening.get();
        if (!isRead || !opened) {
            throw std::runtime_error("no stream");
        }
        stream = std::move(*opened);
    }

    /// Starts it; pictures are `width` x `height`, as large as the source where that is 0.
    void start(int width = 0, int height = 0) {
        stream->configure(
            {width != 0 ? width : stream->width(), height != 0 ? height : stream->height()});
        ASSERT_TRUE(stream->addStreamOutput(queue, [this](const ScreenSample& sample) {
            const std::lock_guard lock(mutex);
            samples.push_back(sample);
            return refusals-- <= 0;
        }));
        ASSERT_TRUE(stream->startCapture());
        ASSERT_TRUE(waitForSamples(1));
    }

    void stop() {
        if (stream) {
            static_cast<void>(stream->stopCapture());
        }
        stream.reset();
        queue.sync([] {});
    }

    std::size_t count() {
        const std::lock_guard lock(mutex);
        return samples.size();
    }
    ScreenSample sample(std::size_t index) {
        const std::lock_guard lock(mutex);
        return samples.at(index);
    }
    ScreenSample last() {
        const std::lock_guard lock(mutex);
        return samples.back();
    }
    bool waitForSamples(std::size_t wanted) {
        return waitFor([&] { return count() >= wanted; });
    }

    /// Sends a picture and waits for the sample of it.
    void show(const CastFrame& frame) {
        const std::size_t before = count();
        ASSERT_TRUE(waitFor([&] { return cast->send(frame); }));
        ASSERT_TRUE(waitForSamples(before + 1));
    }

    /// Sends a picture, after a change of what both sides agreed upon, and waits until the
    /// newest sample has a colour at (x, y).
    void showAnew(const CastFrame& frame, int x, int y, std::uint32_t colour) {
        ASSERT_TRUE(waitFor([&] { return cast->send(frame); }));
        EXPECT_TRUE(waitFor([&] { return ((pixel(last(), x, y) ^ colour) & 0xFFFFFF) == 0; }))
            << std::hex << pixel(last(), x, y);
    }

    /// Sends what makes no sample, and then something that does.
    void expectNoSampleOf(const CastFrame& frame) {
        const std::size_t before = count();
        ASSERT_TRUE(waitFor([&] { return cast->send(frame); }));
        show(plain(kViolet));
        EXPECT_EQ(count(), before + 1);
        EXPECT_LE(distance(pixel(last(), 0, 0), kViolet), 2);
    }

    test::PipeWireTestServer server;
    FakeExecutor main;
    PortalPointer pointer{main, [] { return std::nullopt; }};
    SerialQueue queue{"test"};
    std::unique_ptr<FakeCast> cast;
    std::unique_ptr<CastStream> stream;
    std::mutex mutex;
    std::vector<ScreenSample> samples; ///< By the mutex, as the next.
    int refusals = 0;                  ///< So many pictures can't be used.
};

} // namespace tavi::test
