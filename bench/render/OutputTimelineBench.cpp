#include "render/OutputTimeline.h"
#include "support/HourLog.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

EditProject hourWithCuts(int cuts) {
    EditProject project;
    project.cursorEvents = bench::hourLog();
    for (int i = 0; i < cuts; ++i) {
        const double start = 3600.0 * (i + 0.5) / cuts;
        project.trimState.cutSegments.push_back({Uuid::make(), start, start + 600.0 / cuts});
    }
    for (int i = 0; i < 300; ++i) {
        ZoomKeyframe keyframe;
        keyframe.timestamp = i * 12.0;
        keyframe.endTime = keyframe.timestamp + 8;
        keyframe.waypoints = {{keyframe.timestamp + 2, 1, 1}, {keyframe.timestamp + 4, 2, 2}};
        keyframe.zoomCurve = {{Uuid::make(), keyframe.timestamp + 1, 2},
                              {Uuid::make(), keyframe.endTime - 1, 2}};
        project.keyframes.push_back(keyframe);
    }
    return project;
}

/// Moves an hour of events and 300 keyframes. The argument is the number of cuts;
/// without any, the log is copied.
void moveAnHourToOutputTime(benchmark::State& state) {
    const EditProject project = hourWithCuts(static_cast<int>(state.range(0)));
    for (auto _ : state) {
        benchmark::DoNotOptimize(makeOutputTimeline(project, 3600));
    }
}
BENCHMARK(moveAnHourToOutputTime)->Arg(0)->Arg(1)->Arg(50)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi
