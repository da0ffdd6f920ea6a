#include "editor/PreviewComposer.h"

#include <benchmark/benchmark.h>

#include <array>

namespace tavi::bench {

namespace {

constexpr Size kVideo{1920, 1080};
constexpr FrameSize kCanvas{1280, 720};
constexpr double kRate = 30; ///< Pictures a second that the canvas shows.

/// Stripes that differ from picture to picture.
PixelBufferPtr stripes(Size size, int phase) {
    auto picture =
        std::make_shared<PixelBuffer>(static_cast<int>(size.width), static_cast<int>(size.height));
    for (int y = 0; y < picture->height(); ++y) {
        for (int x = 0; x < picture->width() * 4; ++x) {
            picture->row(y)[x] =
                static_cast<std::uint8_t>(x % 4 == 3 ? 255 : (x + 3 * y + 40 * phase) % 256);
        }
    }
    return picture;
}

EditProject project(BackgroundStyle style) {
    EditProject made;
    made.appearanceSettings.backgroundStyle = style;
    made.appearanceSettings.padding = 0.06;
    made.appearanceSettings.shadowEnabled = true;
    made.cameraSettings.enabled = true;
    made.videoHeight = kVideo.height;
    for (int i = 0; i < 600; ++i) {
        made.cursorEvents.push_back({i * 0.05, 200.0 + i, 300.0 + i / 2.0, CursorEventType::move});
    }
    ZoomKeyframe zoom;
    zoom.endTime = 30;
    zoom.transitionDuration = 10;
    zoom.rect = {300, 200, 960, 540};
    made.keyframes = {zoom};
    return made;
}

/// What one update of the canvas costs while a take with a camera plays: each shows another
/// picture of both, and the camera of the zoom moves. The counter is the share of a core at 30 a
/// second.
void canvasOfAPlayingTake(benchmark::State& state) {
    const auto style = static_cast<BackgroundStyle>(state.range(0));
    const EditProject scene = project(style);
    const std::array films{stripes(kVideo, 0), stripes(kVideo, 1), stripes(kVideo, 2)};
    const std::array cameras{stripes({1280, 720}, 0), stripes({1280, 720}, 1)};
    PreviewComposer composer;
    composer.setLog(scene, kVideo);
    std::size_t count = 0;
    for (auto _ : state) {
        PixelBuffer picture(kCanvas.width, kCanvas.height);
        composer.setScene(scene, kVideo, kCanvas);
        composer.compose({films[count % films.size()], cameras[count % cameras.size()],
                          static_cast<double>(count) / kRate, 0, CanvasMode::preview},
                         picture);
        benchmark::DoNotOptimize(picture.data());
        ++count;
    }
    state.SetLabel(std::string(rawValue(style)));
    state.counters["core"] =
        benchmark::Counter(static_cast<double>(count) / kRate,
                           benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

BENCHMARK(canvasOfAPlayingTake)->DenseRange(3, 5)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi::bench
