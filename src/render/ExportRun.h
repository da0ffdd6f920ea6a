#pragma once

#include "render/AudioPump.h"
#include "render/CameraFrames.h"
#include "render/ExportLog.h"
#include "render/FrameComposer.h"
#include "render/OutputTimeline.h"
#include "render/SourceFrames.h"
#include "render/VideoExportService.h"

#include <memory>

namespace tavi {

/// One export while it runs: its state, and its steps in their order.
///
/// Order: open, startWriting, every range, finish. The destructor of the writer
/// cancels a file that was not finished.
/// Thread: one.
class ExportRun {
public:
    struct Ports {
        MediaLibrary& media;
        const ExportLog& log;
        const VideoExportService::Sleep& sleep;
        const std::atomic<bool>& isCancelled;
        bool isDraft = false;
    };

    ExportRun(const EditProject& project, Ports ports);

    /// Opens the take, moves the project to output time and builds what draws.
    Result<void, ExportFailure> open();

    /// Makes the writer and starts it, empties the log and begins it.
    Result<void, ExportFailure> startWriting(const std::filesystem::path& output);

    /// Writes every range, one after the other.
    Result<void, ExportFailure> writeRanges(const VideoExportService::Progress& progress);

    /// Hands on the rest of the sound and completes the file.
    Result<ExportReport, ExportFailure> finish();

private:
    /// What one range needs while it is written.
    struct RangeState {
        double start = 0;        ///< Source seconds.
        double outputOffset = 0; ///< Output seconds.
        std::int64_t frames = 0; ///< On the grid of this range.
        SourceFrames source;
        CameraFrames camera;
    };

    Result<void, ExportFailure> addVideoInput();
    Result<void, ExportFailure> addAudioInput();
    void startReadingAudio();
    Result<void, ExportFailure> writeRange(std::size_t index,
                                           const VideoExportService::Progress& progress);
    Result<RangeState, ExportFailure> openRange(std::size_t index);
    CameraFrames openCameraRange(const TimeRange& range) const;
    Result<void, ExportFailure> writeFrame(RangeState& range, std::int64_t n,
                                           const VideoExportService::Progress& progress);
    bool appendPicture(const RangeState& range, double outputTime);
    Result<void, ExportFailure> waitForVideoInput(std::int64_t n);
    void makeUseOfWait();
    Result<void, ExportFailure> drainAudio();
    std::int64_t framesOf(const TimeRange& range) const;
    std::int64_t framesFor(double seconds) const;
    bool hasWriterEnded() const;
    void logStart() const;
    void logFrame(RangeState& range, std::int64_t n, double sourceTime, double outputTime) const;

    const EditProject& m_project;
    Ports m_ports;
    Asset m_asset;
    std::optional<Asset> m_camera;
    OutputTimeline m_timeline;
    std::unique_ptr<FrameComposer> m_composer;
    std::unique_ptr<AssetWriter> m_writer;
    VideoWriterInput* m_videoInput = nullptr; ///< Owned by the writer, as the next.
    AudioWriterInput* m_audioInput = nullptr; ///< Null for a take without sound.
    std::int64_t m_totalFrames = 0;
    std::int64_t m_globalFrameIndex = 0;
    AudioPump m_audio;
    bool m_isLastInFilm = false; ///< The picture composed last was appended.
    bool m_isSourceDamaged = false;
    bool m_isSoundDamaged = false;
};

} // namespace tavi
