#pragma once

#include "fakes/FakeClock.h"
#include "fakes/FakeFilm.h"
#include "project/RecordingFolder.h"
#include "render/VideoExportService.h"
#include "support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <sstream>
#include <string>
#include <variant>
#include <vector>

namespace tavi::test {

/// A take of one second with a frame every tenth, whose shade is 10 times its number.
class ExportOfATake : public testing::Test {
protected:
    ExportOfATake() {
        film.samples.clear();
        for (int i = 0; i < 10; ++i) {
            film.samples.push_back({i / 10.0, true, static_cast<std::uint8_t>(10 * i)});
        }
        project.recordingPath = "file:///takes/A%20take/";
        project.outputSettings = {{32, 18}, 10, false};
        project.appearanceSettings.backgroundStyle = BackgroundStyle::solidBlack;
        project.appearanceSettings.padding = 0;
        project.appearanceSettings.cornerRadius = 0;
        project.cursorSettings.showCursor = false;
    }

    Result<ExportReport, ExportFailure> run() {
        service.emplace(film, clock, log, [this](std::chrono::nanoseconds time) {
            slept.push_back(time);
            if (onSleep) {
                onSleep();
            }
        });
        service->isCancelled = isCancelled;
        return service->exportProject(project, "film.mp4", [this](double share) {
            progress.push_back(share);
            if (onProgress) {
                onProgress();
            }
        });
    }

    std::vector<std::int64_t> times() const {
        std::vector<std::int64_t> values;
        for (const auto& frame : film.written) {
            EXPECT_EQ(frame.time.timescale, 600);
            values.push_back(frame.time.value);
        }
        return values;
    }

    std::vector<int> shades() const {
        std::vector<int> values;
        for (const auto& frame : film.written) {
            values.push_back(frame.shade);
        }
        return values;
    }

    /// The messages of the log, without their dates.
    std::vector<std::string> messages() const {
        std::istringstream text(readFile(log));
        std::vector<std::string> lines;
        for (std::string line; std::getline(text, line);) {
            lines.push_back(line.substr(line.find(": ") + 2));
        }
        return lines;
    }

    TemporaryFolder folder;
    std::filesystem::path log = folder / "export_debug.log";
    FakeFilm film;
    FakeClock clock;
    EditProject project;
    bool isCancelled = false;
    std::optional<VideoExportService> service;
    std::vector<double> progress;
    std::vector<std::chrono::nanoseconds> slept;
    std::function<void()> onProgress;
    std::function<void()> onSleep;
};

inline bool isError(const Result<ExportReport, ExportFailure>& report, ExportError error) {
    const auto* own = report ? nullptr : std::get_if<ExportError>(&report.error());
    return own && *own == error;
}

inline void cut(EditProject& project, double start, double end) {
    project.trimState.cutSegments.push_back({Uuid::make(), start, end});
}

} // namespace tavi::test
