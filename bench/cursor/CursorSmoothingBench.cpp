#include "cursor/CursorSmoothing.h"
#include "cursor/SpringIntegrator.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

/// An hour under 150 ms with every preset. The argument is the preset.
void smoothAnHour(benchmark::State& state) {
    const auto log = bench::hourLog();
    const auto preset = static_cast<CursorSmoothingPreset>(state.range(0));
    for (auto _ : state) {
        benchmark::DoNotOptimize(smoothCursorEvents(log, preset, 1080));
    }
}
BENCHMARK(smoothAnHour)->DenseRange(0, 4)->Unit(benchmark::kMillisecond);

/// What the same hour costs with the spring integrated step by step.
void integrateAnHourPlainly(benchmark::State& state) {
    const auto log = bench::hourLog();
    const SpringConstants spring{1.5, 26.0, 170.0};
    for (auto _ : state) {
        for (int pass = 0; pass < 2; ++pass) {
            SpringState x{log[0].x, 0};
            SpringState y{log[0].y, 0};
            for (std::size_t i = 1; i < log.size(); ++i) {
                const double gap = log[i].timestamp - log[i - 1].timestamp;
                integrateSpring(x, log[i].x, gap, spring);
                integrateSpring(y, log[i].y, gap, spring);
            }
            benchmark::DoNotOptimize(x);
            benchmark::DoNotOptimize(y);
        }
    }
}
BENCHMARK(integrateAnHourPlainly)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
