#include "cursor/CursorRenderer.h"
#include "cursor/Keystrokes.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

constexpr double kFrame = 1.0 / 60;
constexpr double kHour = 3600;

CursorRenderer hourRenderer(CursorSmoothingPreset preset) {
    CursorSettings settings;
    settings.smoothingPreset = preset;
    settings.showClickEffect = true;
    settings.showKeystrokes = true;
    return CursorRenderer::make(bench::hourLog(), 1080, settings);
}

/// The moments of an export, frame after frame.
class Playhead {
public:
    double next() {
        m_time += kFrame;
        if (m_time > kHour) {
            m_time = 0;
        }
        return m_time;
    }

private:
    double m_time = 0;
};

/// Under 100 ns. The argument is the preset: none reads the log, the others the path.
void positionInAnHour(benchmark::State& state) {
    const auto renderer = hourRenderer(static_cast<CursorSmoothingPreset>(state.range(0)));
    Playhead playhead;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.position(playhead.next()));
    }
}
BENCHMARK(positionInAnHour)->Arg(0)->Arg(2);

/// The same for moments far from each other, as a seeking preview asks.
void positionAnywhereInAnHour(benchmark::State& state) {
    const auto renderer = hourRenderer(CursorSmoothingPreset::medium);
    std::mt19937_64 random(7);
    std::vector<double> times(4096);
    for (double& time : times) {
        time = std::uniform_real_distribution<double>(0, kHour)(random);
    }
    std::size_t i = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.position(times[i++ % times.size()]));
    }
}
BENCHMARK(positionAnywhereInAnHour);

void imageIdInAnHour(benchmark::State& state) {
    const auto renderer = hourRenderer(CursorSmoothingPreset::medium);
    Playhead playhead;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.cursorImageId(playhead.next()));
    }
}
BENCHMARK(imageIdInAnHour);

void clickEffectsInAnHour(benchmark::State& state) {
    const auto renderer = hourRenderer(CursorSmoothingPreset::medium);
    Playhead playhead;
    for (auto _ : state) {
        benchmark::DoNotOptimize(renderer.clickEffects(playhead.next()));
    }
}
BENCHMARK(clickEffectsInAnHour);

void chipsInAnHour(benchmark::State& state) {
    const auto renderer = hourRenderer(CursorSmoothingPreset::medium);
    const double lifetime = renderer.settings.keystrokeDisplayDuration;
    Playhead playhead;
    for (auto _ : state) {
        const double time = playhead.next();
        benchmark::DoNotOptimize(
            visibleKeystrokes(renderer.recentKeyPresses(time), time, lifetime));
    }
}
BENCHMARK(chipsInAnHour);

/// What a frame would cost with the whole log scanned for chips.
void chipsInAnHourByScan(benchmark::State& state) {
    const auto renderer = hourRenderer(CursorSmoothingPreset::medium);
    const double lifetime = renderer.settings.keystrokeDisplayDuration;
    Playhead playhead;
    for (auto _ : state) {
        benchmark::DoNotOptimize(visibleKeystrokes(renderer.events, playhead.next(), lifetime));
    }
}
BENCHMARK(chipsInAnHourByScan);

/// Smoothing and indexing, with the copy of the log that the renderer keeps.
void makeRendererOfAnHour(benchmark::State& state) {
    const auto log = bench::hourLog();
    for (auto _ : state) {
        benchmark::DoNotOptimize(CursorRenderer::make(log, 1080, {}));
    }
}
BENCHMARK(makeRendererOfAnHour)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
