#include "render/FrameComposer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <memory>

namespace tavi {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

/// Text-like noise: no two neighbours alike, all opaque. `scale` times 1080p.
PixelBufferPtr busyFrame(unsigned seed, int scale = 1) {
    auto frame = std::make_shared<PixelBuffer>(kWidth * scale, kHeight * scale);
    unsigned state = seed;
    for (int y = 0; y < frame->height(); ++y) {
        for (int i = 0; i < frame->width() * 4; ++i) {
            state = state * 1664525U + 1013904223U;
            frame->row(y)[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(state >> 24);
        }
    }
    return frame;
}

EditProject fullProject(BackgroundStyle style, double zoom, int scale) {
    EditProject project;
    project.appearanceSettings.backgroundStyle = style;
    project.appearanceSettings.shadowEnabled = true;
    project.outputSettings.resolution = {static_cast<double>(kWidth * scale),
                                         static_cast<double>(kHeight * scale)};
    project.appearanceSettings.padding = 0.03;
    project.appearanceSettings.cornerRadius = 13;
    project.appearanceSettings.blurRadius = 40;
    project.cursorEvents = {
        {0, kWidth * scale / 2.0, kHeight * scale / 2.0, CursorEventType::move}};
    project.videoHeight = kHeight * scale;
    if (zoom > 1) {
        ZoomKeyframe keyframe;
        keyframe.endTime = 100;
        keyframe.rect = {400.3 * scale, 200.7 * scale, kWidth * scale / zoom,
                         kHeight * scale / zoom};
        keyframe.waypoints = {{100, 900.0 * scale, 600.0 * scale}};
        project.keyframes = {keyframe};
    }
    return project;
}

/// What everything else is measured by: one copy of a frame's pixels.
void copyFrame(benchmark::State& state) {
    const PixelBufferPtr frame = busyFrame(1);
    PixelBuffer out(kWidth, kHeight);
    for (auto _ : state) {
        std::memcpy(out.data(), frame->data(), frame->stride() * kHeight);
        benchmark::DoNotOptimize(out.data());
        benchmark::ClobberMemory();
    }
}
BENCHMARK(copyFrame)->Unit(benchmark::kMillisecond);

/// Seconds that the fastest of some copies of a frame's pixels takes now: the
/// unit of the ratios, measured in the same run.
double secondsOfACopy(const PixelBuffer& from, PixelBuffer& to) {
    using Clock = std::chrono::steady_clock;
    auto least = std::chrono::duration<double>::max();
    for (int i = 0; i < 30; ++i) {
        const auto start = Clock::now();
        std::memcpy(to.data(), from.data(),
                    from.stride() * static_cast<std::size_t>(from.height()));
        benchmark::ClobberMemory();
        least = std::min<std::chrono::duration<double>>(least, Clock::now() - start);
    }
    return least.count();
}

/// One frame with padding, corners, shadow and pointer, panning. The arguments
/// are the background, the zoom in percent, and the size as a multiple of 1080p.
/// `copies` is the mean time in copies of the frame; the bars at zoom 180 are 4
/// over a gradient, 15 over a blur made anew for each frame, and at twice the size
/// 4.5 times the milliseconds.
void composeFrame(benchmark::State& state) {
    const auto style = static_cast<BackgroundStyle>(state.range(0));
    const int scale = static_cast<int>(state.range(2));
    const EditProject project =
        fullProject(style, static_cast<double>(state.range(1)) / 100, scale);
    FrameComposer composer(
        project, makeOutputTimeline(project, 100),
        {static_cast<double>(kWidth * scale), static_cast<double>(kHeight * scale)});
    const PixelBufferPtr frames[] = {busyFrame(1, scale), busyFrame(2, scale)};
    const FrameSize size = composer.frameSize();
    PixelBuffer out(size.width, size.height);
    const double copy = secondsOfACopy(PixelBuffer(size.width, size.height), out);
    int n = 0;
    const std::clock_t start = std::clock(); // processor time: others may be at work
    for (auto _ : state) {
        composer.composeFrame(frames[n % 2], nullptr, n / 60.0 + 5, out);
        ++n;
        benchmark::ClobberMemory();
    }
    const double seconds = static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
    state.counters["copies"] = seconds / n / copy;
}
BENCHMARK(composeFrame)
    ->ArgNames({"background", "zoom", "size"})
    ->ArgsProduct({{static_cast<int>(BackgroundStyle::gradient),
                    static_cast<int>(BackgroundStyle::blur)},
                   {100, 180},
                   {1, 2}})
    ->Unit(benchmark::kMillisecond);

/// A blur of radius 40 over a whole 1080p frame, way back included.
void blurFrame(benchmark::State& state) {
    const PixelBufferPtr frame = busyFrame(1);
    PixelBuffer out(kWidth, kHeight);
    for (auto _ : state) {
        gaussianBlur(out, *frame, static_cast<double>(state.range(0)), BlurEdges::extended);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(blurFrame)->Arg(5)->Arg(20)->Arg(40)->Arg(100)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
