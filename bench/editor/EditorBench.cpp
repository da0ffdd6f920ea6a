#include "editor/EditorViewModel.h"
#include "fakes/FakeClock.h"
#include "fakes/FakeExecutor.h"
#include "fakes/FakeMedia.h"
#include "fakes/FakePlayer.h"
#include "fakes/FakeTimers.h"
#include "project/RecordingMetadataJson.h"
#include "support/HourLog.h"
#include "support/TemporaryFolder.h"

#include <benchmark/benchmark.h>

namespace tavi::bench {

namespace {

constexpr int kKeyframes = 200;
constexpr double kSpacing = 15; ///< Seconds from one keyframe to the next.

EditProject hourProject() {
    EditProject project;
    project.recordingPath = "file:///take/";
    for (int i = 0; i < kKeyframes; ++i) {
        ZoomKeyframe keyframe;
        keyframe.timestamp = kSpacing * i;
        keyframe.endTime = keyframe.timestamp + kSpacing / 2;
        keyframe.rect = {100, 100, 960, 540};
        for (double time = keyframe.timestamp; time <= keyframe.endTime; time += 1) {
            keyframe.zoomCurve.push_back({Uuid::make(), time, 2});
            keyframe.waypoints.push_back({time, 600, 400});
        }
        project.keyframes.push_back(std::move(keyframe));
    }
    return project;
}

/// A take of an hour with 220,000 events and 200 keyframes, opened without its media.
class HourEditor {
public:
    HourEditor() {
        writeTextFile(m_library / "take/metadata.json", encode(hourMetadata()));
        saveProject(hourProject(), m_library / "take");
    }

    EditorViewModel open() {
        return EditorViewModel(m_library / "take",
                               {m_players, m_media, [](const auto&) { return nullptr; }, m_clock,
                                m_main, m_background, m_timers, m_library.path()});
    }

private:
    static std::string encode(const RecordingMetadata& metadata) {
        return encodeRecordingMetadata(metadata).value();
    }

    struct Library : test::TemporaryFolder {
        Library() { std::filesystem::create_directories(*this / "take"); }
    };

    Library m_library;
    CallLog m_log;
    FakePlayers m_players{m_log};
    FakeMediaLibrary m_media;
    FakeClock m_clock;
    FakeExecutor m_main;
    FakeExecutor m_background;
    FakeTimers m_timers;
};

void openTake(benchmark::State& state) {
    HourEditor hour;
    for (auto _ : state) {
        benchmark::DoNotOptimize(hour.open().project().cursorEvents.size());
    }
}

/// An edge of a keyframe is dragged: the command with its save.
void updateKeyframe(benchmark::State& state) {
    HourEditor hour;
    EditorViewModel editor = hour.open();
    ZoomKeyframe keyframe = editor.project().keyframes[kKeyframes / 2];
    for (auto _ : state) {
        keyframe.endTime += 0.001;
        editor.updateKeyframe(keyframe);
    }
}

void toggleCut(benchmark::State& state) {
    HourEditor hour;
    EditorViewModel editor = hour.open();
    double time = 0;
    for (auto _ : state) {
        editor.seek(time);
        editor.toggleCut();
        editor.seek(time + 0.05);
        editor.toggleCut();
        time += 0.1;
    }
}

BENCHMARK(openTake)->Unit(benchmark::kMillisecond);
BENCHMARK(updateKeyframe)->Unit(benchmark::kMillisecond);
BENCHMARK(toggleCut)->Unit(benchmark::kMillisecond);

} // namespace
} // namespace tavi::bench
