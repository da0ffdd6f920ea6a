#include "autozoom/UnifiedAutoZoom.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

EditProject hourProject() {
    EditProject project;
    project.cursorEvents = bench::hourLog();
    project.videoHeight = 1080;
    return project;
}

/// An hour under 50 ms. The argument is the aggressiveness in percent.
void generateKeyframesOfAnHour(benchmark::State& state) {
    const EditProject project = hourProject();
    const double aggressiveness = static_cast<double>(state.range(0)) / 100;
    std::size_t count = 0;
    for (auto _ : state) {
        count = UnifiedAutoZoom::generate(project, {1920, 1080}, 3600, aggressiveness).size();
        benchmark::DoNotOptimize(count);
    }
    state.counters["keyframes"] = static_cast<double>(count);
}
BENCHMARK(generateKeyframesOfAnHour)->Arg(0)->Arg(50)->Arg(100)->Unit(benchmark::kMillisecond);

/// A log with key lines some milliseconds late has to be sorted first.
void generateKeyframesOfAnHourOutOfOrder(benchmark::State& state) {
    EditProject project = hourProject();
    for (std::size_t i = 1; i < project.cursorEvents.size(); i += 500) {
        std::swap(project.cursorEvents[i - 1], project.cursorEvents[i]);
    }
    for (auto _ : state) {
        benchmark::DoNotOptimize(UnifiedAutoZoom::generate(project, {1920, 1080}, 3600, 0.5));
    }
}
BENCHMARK(generateKeyframesOfAnHourOutOfOrder)->Unit(benchmark::kMillisecond);

/// Clicks everywhere, a second and a half apart: as many shots as can be.
void generateKeyframesOfAnHourOfClicks(benchmark::State& state) {
    EditProject project = hourProject();
    for (std::size_t i = 0; i < project.cursorEvents.size(); ++i) {
        project.cursorEvents[i].eventType =
            i % 93 == 0 ? CursorEventType::leftMouseDown : CursorEventType::move;
    }
    std::size_t count = 0;
    for (auto _ : state) {
        count = UnifiedAutoZoom::generate(project, {1920, 1080}, 3600, 1).size();
        benchmark::DoNotOptimize(count);
    }
    state.counters["keyframes"] = static_cast<double>(count);
}
BENCHMARK(generateKeyframesOfAnHourOfClicks)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
