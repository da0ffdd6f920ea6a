#pragma once

#include "base/Clock.h"
#include "base/Result.h"
#include "media/MediaLibrary.h"
#include "project/EditProject.h"
#include "render/ExportError.h"

#include <atomic>
#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>

namespace tavi {

/// How an export that ran to its end went.
struct ExportReport {
    AssetWriterStatus writerStatus = AssetWriterStatus::unknown;
    std::optional<MediaError> writerError; ///< Why the writer failed, when it did.
    std::int64_t framesAppended = 0;
    bool isSourceDamaged = false; ///< A part of the video can't be read; a picture
                                  ///< stands still there.
    bool isSoundDamaged = false;  ///< The sound can't be read to its end, or not at all.

    /// True when there is a finished file.
    bool hasFile() const {
        return writerStatus == AssetWriterStatus::completed && framesAppended > 0;
    }
};

/// Why an export that ran to its end left no film at `output`, for the user; absent
/// when there is one.
std::optional<Message> problemOf(const ExportReport& report, const std::filesystem::path& output);

/// Turns a project with its take into an MP4: reads every kept range frame by
/// frame, composes a new picture for each point of a regular grid and encodes it.
///
/// One service serves one export.
/// Threads: exportProject() runs on the caller's thread and blocks it; decoding
/// and encoding overlap with it inside the reader and the writer. `isCancelled`
/// is set from any thread.
class VideoExportService {
public:
    /// Called after each appended frame with the share that is done. Ranges are
    /// rounded up to whole frames each, so the last value may lie above 1.
    using Progress = std::function<void(double)>;

    /// Sleeps on the calling thread.
    using Sleep = std::function<void(std::chrono::nanoseconds)>;

    VideoExportService(MediaLibrary& media, const Clock& clock);
    VideoExportService(MediaLibrary& media, const Clock& clock, std::filesystem::path logFile,
                       Sleep sleep);

    /// Exports the take that `project.recordingPath` names to `output`, in
    /// H.265. Where 4:2:0 needs it the file has a row or column more than the
    /// output size; the background fills it.
    ///
    /// Errors: noVideoTrack, also when trim and cuts leave nothing; cancelled;
    ///         those of the media stack in opening, reading and starting to write.
    ///         A writer that fails on the way ends the export, which the report tells.
    /// What stood at `output` is untouched unless the export completes.
    Result<ExportReport, ExportFailure> exportProject(const EditProject& project,
                                                      const std::filesystem::path& output,
                                                      const Progress& progress);

    /// For a film to look at once: encoded as quickly as the machine can. Set before
    /// exportProject().
    bool isDraft = false;

    /// Set to true to end the export at its next step; never reset.
    std::atomic<bool> isCancelled = false;

private:
    MediaLibrary& m_media;
    const Clock& m_clock;
    std::filesystem::path m_logFile;
    Sleep m_sleep;
};

/// The debug log of exports: "export_debug.log" in the library's folder.
std::filesystem::path exportLogFile();

/// The average bit rate of an exported film, bits per second.
std::int64_t exportBitRate(int width, int height);

} // namespace tavi
