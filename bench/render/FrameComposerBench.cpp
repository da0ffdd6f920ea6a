#include "render/FrameComposer.h"

#include <benchmark/benchmark.h>

#include <cstring>
#include <memory>

namespace tavi {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

/// Text-like noise: no two neighbours alike, all opaque.
PixelBufferPtr busyFrame(unsigned seed) {
    auto frame = std::make_shared<PixelBuffer>(kWidth, kHeight);
    unsigned state = seed;
    for (int y = 0; y < kHeight; ++y) {
        for (int i = 0; i < kWidth * 4; ++i) {
            state = state * 1664525U + 1013904223U;
            frame->row(y)[i] = i % 4 == 3 ? 255 : static_cast<std::uint8_t>(state >> 24);
        }
    }
    return frame;
}

EditProject fullProject(BackgroundStyle style, double zoom) {
    EditProject project;
    project.appearanceSettings.backgroundStyle = style;
    project.appearanceSettings.shadowEnabled = true;
    project.cursorEvents = {{0, kWidth / 2.0, kHeight / 2.0, CursorEventType::move}};
    project.videoHeight = kHeight;
    if (zoom > 1) {
        ZoomKeyframe keyframe;
        keyframe.endTime = 100;
        keyframe.rect = {400.3, 200.7, kWidth / zoom, kHeight / zoom};
        keyframe.waypoints = {{100, 900, 600}};
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

/// One frame at 1080p with padding, corners, shadow and pointer, panning. The
/// arguments are the background and the zoom in percent.
void composeFrame(benchmark::State& state) {
    const auto style = static_cast<BackgroundStyle>(state.range(0));
    const EditProject project = fullProject(style, static_cast<double>(state.range(1)) / 100);
    FrameComposer composer(project, makeOutputTimeline(project, 100), {kWidth, kHeight});
    const PixelBufferPtr frames[] = {busyFrame(1), busyFrame(2)};
    PixelBuffer out(kWidth, kHeight);
    int n = 0;
    for (auto _ : state) {
        composer.composeFrame(frames[n % 2], nullptr, n / 60.0 + 5, out);
        ++n;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(composeFrame)
    ->ArgNames({"background", "zoom"})
    ->ArgsProduct({{static_cast<int>(BackgroundStyle::gradient),
                    static_cast<int>(BackgroundStyle::blur)},
                   {100, 200}})
    ->Unit(benchmark::kMillisecond);

/// The same over black with 20 chips and the camera at half the frame rate. The
/// argument tells whether the chips are fading, which draws them anew each frame.
void composeOverlays(benchmark::State& state) {
    EditProject project = fullProject(BackgroundStyle::solidBlack, 1);
    project.appearanceSettings.shadowEnabled = false;
    project.cursorSettings.showKeystrokes = true;
    project.cursorSettings.keystrokeDisplayDuration = 1000;
    for (int i = 0; i < 20; ++i) {
        project.cursorEvents.push_back(
            {0.5, 0, 0, CursorEventType::keyDown, 0, std::string(1, 'a'), 0x100000});
    }
    FrameComposer composer(project, makeOutputTimeline(project, 2000), {kWidth, kHeight});
    const PixelBufferPtr frames[] = {busyFrame(1), busyFrame(2)};
    PixelBuffer out(kWidth, kHeight);
    const double start = state.range(0) != 0 ? 760 : 5;
    int n = 0;
    for (auto _ : state) {
        composer.composeFrame(frames[n % 2], frames[n / 2 % 2], n / 60.0 + start, out);
        ++n;
        benchmark::ClobberMemory();
    }
}
BENCHMARK(composeOverlays)->ArgName("fading")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

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
