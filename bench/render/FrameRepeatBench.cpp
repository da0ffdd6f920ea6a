#include "render/FrameComposer.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cstring>
#include <memory>

namespace tavi {
namespace {

constexpr int kWidth = 1920;
constexpr int kHeight = 1080;

PixelBufferPtr stripedFrame() {
    auto frame = std::make_shared<PixelBuffer>(kWidth, kHeight);
    for (int y = 0; y < kHeight; ++y) {
        std::memset(frame->row(y), y & 255, frame->stride());
    }
    return frame;
}

EditProject restingProject() {
    EditProject project;
    project.appearanceSettings.backgroundStyle = BackgroundStyle::gradient;
    project.appearanceSettings.shadowEnabled = true;
    project.cursorSettings.showKeystrokes = true;
    project.cursorEvents = {{0, kWidth / 2.0, kHeight / 2.0, CursorEventType::move}};
    project.videoHeight = kHeight;
    return project;
}

double seconds(const auto& work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/// Finding out that a frame equals the one before, against composing it: `share`.
void repeatFrame(benchmark::State& state) {
    const EditProject project = restingProject();
    FrameComposer composer(project, makeOutputTimeline(project, 1000), {kWidth, kHeight});
    const PixelBufferPtr frame = stripedFrame();
    PixelBuffer out(kWidth, kHeight);
    composer.composeFrame(frame, nullptr, 0, out);
    const double full = seconds([&] { composer.composeFrame(frame, nullptr, 0, out); });
    double time = 0;
    double spent = 0;
    for (auto _ : state) {
        time += 1.0 / 60;
        const double taken = seconds([&] {
            if (!composer.isRepeat(frame, nullptr, time)) {
                state.SkipWithError("the frame is no repeat");
            }
        });
        spent += taken;
        state.SetIterationTime(taken);
    }
    state.counters["share"] = spent / static_cast<double>(state.iterations()) / full;
}
BENCHMARK(repeatFrame)->UseManualTime()->Unit(benchmark::kMicrosecond);

} // namespace
} // namespace tavi
