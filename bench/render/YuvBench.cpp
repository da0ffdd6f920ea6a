#include "render/YuvConverter.h"

#include <benchmark/benchmark.h>

extern "C" {
#include <libswscale/swscale.h>
}

#include <algorithm>
#include <chrono>
#include <memory>
#include <vector>

namespace tavi {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

std::uint8_t nextByte(unsigned& state) {
    state = state * 1664525U + 1013904223U;
    return static_cast<std::uint8_t>(state >> 24);
}

/// A 4:2:0 picture of 1080p that owns its planes, full of noise.
class Picture {
public:
    Picture() : m_samples(std::size_t{kWidth} * kHeight * 3 / 2) {
        unsigned state = 1;
        std::generate(m_samples.begin(), m_samples.end(), [&] { return nextByte(state); });
    }

    YuvView view() {
        YuvView view;
        view.width = kWidth;
        view.height = kHeight;
        view.y = {m_samples.data(), kWidth};
        view.u = {view.y.row(kHeight), kWidth / 2};
        view.v = {view.u.row(kHeight / 2), kWidth / 2};
        return view;
    }

    ConstYuvView constView() {
        const YuvView own = view();
        ConstYuvView view;
        view.width = own.width;
        view.height = own.height;
        view.y = {own.y.data, own.y.stride};
        view.u = {own.u.data, own.u.stride};
        view.v = {own.v.data, own.v.stride};
        return view;
    }

private:
    std::vector<std::uint8_t> m_samples;
};

PixelBuffer noise() {
    PixelBuffer picture(kWidth, kHeight);
    unsigned state = 2;
    std::generate_n(picture.data(), picture.stride() * kHeight, [&] { return nextByte(state); });
    return picture;
}

struct FreeScaler {
    void operator()(SwsContext* scaler) const { sws_freeContext(scaler); }
};
using Scaler = std::unique_ptr<SwsContext, FreeScaler>;

Scaler makeScaler(AVPixelFormat from, AVPixelFormat to, int flags) {
    return Scaler(sws_getContext(kWidth, kHeight, from, kWidth, kHeight, to, flags, nullptr,
                                 nullptr, nullptr));
}

/// Seconds of the fastest of some calls.
template<class Work>
double leastSeconds(Work work) {
    using Clock = std::chrono::steady_clock;
    auto least = std::chrono::duration<double>::max();
    for (int i = 0; i < 60; ++i) {
        const auto start = Clock::now();
        work();
        benchmark::ClobberMemory();
        least = std::min<std::chrono::duration<double>>(least, Clock::now() - start);
    }
    return least.count();
}

/// Times `ours` and says how many times as long libswscale takes with each of the
/// flags that count as its default (`ffmpeg` asks for bicubic), in the same run.
template<class Ours, class Theirs>
void compare(benchmark::State& state, AVPixelFormat from, AVPixelFormat to, Ours ours,
             Theirs theirs) {
    for (auto _ : state) {
        ours();
        benchmark::ClobberMemory();
    }
    const double seconds = leastSeconds(ours);
    const auto ratio = [&](int flags) {
        const Scaler scaler = makeScaler(from, to, flags);
        return leastSeconds([&] { theirs(scaler.get()); }) / seconds;
    };
    state.counters["bicubic"] = ratio(SWS_BICUBIC);
    state.counters["bilinear"] = ratio(SWS_BILINEAR);
    state.counters["fastBilinear"] = ratio(SWS_FAST_BILINEAR);
    state.counters["leastMs"] = seconds * 1000;
}

void yuvToBgra(benchmark::State& state) {
    Picture from;
    PixelBuffer to(kWidth, kHeight);
    const ConstYuvView view = from.constView();
    compare(
        state, AV_PIX_FMT_YUV420P, AV_PIX_FMT_BGRA, [&] { YuvConverter().toBgra(view, to); },
        [&](SwsContext* scaler) {
            const std::uint8_t* const planes[] = {view.y.data, view.u.data, view.v.data, nullptr};
            const int strides[] = {kWidth, kWidth / 2, kWidth / 2, 0};
            std::uint8_t* const pixels[] = {to.data(), nullptr, nullptr, nullptr};
            const int pixelStrides[] = {static_cast<int>(to.stride()), 0, 0, 0};
            sws_scale(scaler, planes, strides, 0, kHeight, pixels, pixelStrides);
        });
}
BENCHMARK(yuvToBgra)->Unit(benchmark::kMillisecond);

void bgraToYuv(benchmark::State& state) {
    const PixelBuffer from = noise();
    Picture to;
    const YuvView view = to.view();
    compare(
        state, AV_PIX_FMT_BGRA, AV_PIX_FMT_YUV420P, [&] { YuvConverter().fromBgra(from, view); },
        [&](SwsContext* scaler) {
            const std::uint8_t* const pixels[] = {from.data(), nullptr, nullptr, nullptr};
            const int pixelStrides[] = {static_cast<int>(from.stride()), 0, 0, 0};
            std::uint8_t* const planes[] = {view.y.data, view.u.data, view.v.data, nullptr};
            const int strides[] = {kWidth, kWidth / 2, kWidth / 2, 0};
            sws_scale(scaler, pixels, pixelStrides, 0, kHeight, planes, strides);
        });
}
BENCHMARK(bgraToYuv)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
