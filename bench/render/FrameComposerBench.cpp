#include "render/FrameComposer.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <ctime>
#include <memory>
#include <vector>

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

/// Processor time since `start`, in seconds: others may be at work.
double secondsSince(std::clock_t start) {
    return static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC;
}

/// What an export goes through: every source frame and every output frame is
/// another piece of memory, more of it than the processor's caches hold.
struct FramesInTurn {
    static constexpr std::size_t kCount = 8;

    std::vector<PixelBufferPtr> sources;
    std::vector<PixelBuffer> outputs;

    explicit FramesInTurn(int scale) {
        for (unsigned i = 0; i < kCount; ++i) {
            sources.push_back(busyFrame(i + 1, scale));
            outputs.emplace_back(kWidth * scale, kHeight * scale);
        }
    }

    const PixelBufferPtr& source(std::size_t n) const { return sources[n % kCount]; }
    PixelBuffer& output(std::size_t n) { return outputs[n % kCount]; }

    void copy(std::size_t n) {
        const PixelBuffer& from = *source(n);
        std::memcpy(output(n).data(), from.data(),
                    from.stride() * static_cast<std::size_t>(from.height()));
        benchmark::ClobberMemory();
    }

    /// Mean processor time of a copy of each source into its output, in seconds.
    double secondsOfACopy() {
        constexpr std::size_t kCopies = 4 * kCount;
        const std::clock_t start = std::clock();
        for (std::size_t n = 0; n < kCopies; ++n) {
            copy(n);
        }
        return secondsSince(start) / kCopies;
    }
};

/// copyFrame() through frames in turn. The argument is the size as a multiple of
/// 1080p.
void copyFrameInTurn(benchmark::State& state) {
    FramesInTurn frames(static_cast<int>(state.range(0)));
    std::size_t n = 0;
    for (auto _ : state) {
        frames.copy(n++);
    }
}
BENCHMARK(copyFrameInTurn)->ArgName("size")->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

void forEachLook(benchmark::internal::Benchmark* bench) {
    bench->ArgNames({"background", "zoom", "size"})
        ->ArgsProduct(
            {{static_cast<int>(BackgroundStyle::gradient), static_cast<int>(BackgroundStyle::blur)},
             {100, 180},
             {1, 2}})
        ->Unit(benchmark::kMillisecond);
}

FrameComposer composerFor(const benchmark::State& state) {
    const int scale = static_cast<int>(state.range(2));
    const EditProject project = fullProject(static_cast<BackgroundStyle>(state.range(0)),
                                            static_cast<double>(state.range(1)) / 100, scale);
    return {project,
            makeOutputTimeline(project, 100),
            {static_cast<double>(kWidth * scale), static_cast<double>(kHeight * scale)}};
}

/// One frame with padding, corners, shadow and pointer, panning. The arguments
/// are the background, the zoom in percent, and the size as a multiple of 1080p.
/// `copies` is the mean time in copies of the frame; the bars at zoom 180 are 4
/// over a gradient, 15 over a blur made anew for each frame, and at twice the size
/// 4.5 times the milliseconds.
void composeFrame(benchmark::State& state) {
    const int scale = static_cast<int>(state.range(2));
    FrameComposer composer = composerFor(state);
    const PixelBufferPtr frames[] = {busyFrame(1, scale), busyFrame(2, scale)};
    const FrameSize size = composer.frameSize();
    PixelBuffer out(size.width, size.height);
    const double copy = secondsOfACopy(PixelBuffer(size.width, size.height), out);
    int n = 0;
    const std::clock_t start = std::clock();
    for (auto _ : state) {
        composer.composeFrame(frames[n % 2], nullptr, n / 60.0 + 5, out);
        ++n;
        benchmark::ClobberMemory();
    }
    state.counters["copies"] = secondsSince(start) / n / copy;
}
BENCHMARK(composeFrame)->Apply(forEachLook);

/// The same through frames in turn; `copies` is in copies of the same frames, the
/// mean of those before and those after.
void composeFrameInTurn(benchmark::State& state) {
    FrameComposer composer = composerFor(state);
    FramesInTurn frames(static_cast<int>(state.range(2)));
    double copy = frames.secondsOfACopy();
    std::size_t n = 0;
    const std::clock_t start = std::clock();
    for (auto _ : state) {
        composer.composeFrame(frames.source(n), nullptr, static_cast<double>(n) / 60 + 5,
                              frames.output(n));
        ++n;
        benchmark::ClobberMemory();
    }
    const double seconds = secondsSince(start) / static_cast<double>(n);
    copy = (copy + frames.secondsOfACopy()) / 2;
    state.counters["copies"] = seconds / copy;
}
BENCHMARK(composeFrameInTurn)->Apply(forEachLook);

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
