#include "project/Camera.h"

#include <benchmark/benchmark.h>

namespace tavi {
namespace {

std::vector<ZoomKeyframe> manyKeyframes(int count) {
    std::vector<ZoomKeyframe> keyframes(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) {
        ZoomKeyframe& k = keyframes[static_cast<std::size_t>(i)];
        k.timestamp = i * 10.0;
        k.endTime = k.timestamp + 8;
        k.rect = {100.0 + i, 200, 640, 360};
        k.transitionDuration = 1;
        k.waypoints = {{k.timestamp + 2, 800, 500}, {k.timestamp + 5, 300, 400}};
        k.zoomCurve = {{Uuid::make(), k.timestamp + 1, 3}, {Uuid::make(), k.endTime - 1, 3}};
    }
    return keyframes;
}

/// Under 2 us with 50 keyframes.
void evaluateCameraAmongKeyframes(benchmark::State& state) {
    const auto keyframes = manyKeyframes(static_cast<int>(state.range(0)));
    const double length = static_cast<double>(state.range(0)) * 10;
    double t = 0;
    for (auto _ : state) {
        t += 0.73;
        if (t > length) {
            t -= length;
        }
        benchmark::DoNotOptimize(evaluateCamera(keyframes, t, {1920, 1080}, 16.0 / 9));
    }
}
BENCHMARK(evaluateCameraAmongKeyframes)->Arg(5)->Arg(50)->Arg(500);

} // namespace
} // namespace tavi
