#include "render/ExportRun.h"

#include "project/RecordingFolder.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cmath>

namespace tavi {

namespace {

constexpr std::chrono::nanoseconds kWaitStep{10'000'000};
constexpr std::int64_t kFramesPerLogLine = 120;
constexpr std::int64_t kWaitsPerLogLine = 100;

int number(AssetWriterStatus status) {
    return static_cast<int>(status);
}

/// What to read for a range. One that is shorter than the clock's step is a step
/// long, so that it has a picture.
MediaTimeRange mediaRange(const TimeRange& range) {
    constexpr MediaTime kStep{1, MediaTime::kPreferredTimescale};
    return {MediaTime::fromSeconds(range.start),
            std::max(MediaTime::fromSeconds(range.end - range.start), kStep)};
}

std::vector<std::string> rangeTexts(const std::vector<TimeRange>& ranges) {
    std::vector<std::string> texts;
    texts.reserve(ranges.size());
    for (const TimeRange& range : ranges) {
        texts.push_back(logText(range.start) + "-" + logText(range.end));
    }
    return texts;
}

} // namespace

ExportRun::ExportRun(const EditProject& project, Ports ports)
    : m_project(project),
      m_ports(ports) {}

Result<void, ExportFailure> ExportRun::open() {
    const auto folder = pathOfFileUrl(m_project.recordingPath);
    auto asset = m_ports.media.openAsset(folder / take::kVideo);
    if (!asset) {
        return fail(ExportFailure(std::move(asset.error())));
    }
    if (asset->videoTracks.empty()) {
        return fail(ExportFailure(ExportError::noVideoTrack));
    }
    m_asset = *std::move(asset);
    m_timeline = makeOutputTimeline(m_project, m_asset.duration.seconds());
    if (m_timeline.ranges.empty()) {
        // Kept on purpose: with everything cut away the user reads the same text.
        return fail(ExportFailure(ExportError::noVideoTrack));
    }
    m_composer = std::make_unique<FrameComposer>(m_project, m_timeline,
                                                 m_asset.videoTracks.front().naturalSize);
    m_camera = openCamera(m_ports.media, m_project, folder);
    m_totalFrames = framesFor(m_timeline.duration());
    return {};
}

Result<void, ExportFailure> ExportRun::startWriting(const std::filesystem::path& output) {
    auto writer = m_ports.media.makeWriter(output, FileType::mp4);
    if (!writer) {
        return fail(ExportFailure(std::move(writer.error())));
    }
    m_writer = *std::move(writer);
    if (auto added = addVideoInput(); !added) {
        return added;
    }
    if (auto added = addAudioInput(); !added) {
        return added;
    }
    if (auto started = m_writer->startWriting(); !started) {
        return fail(ExportFailure(std::move(started.error())));
    }
    m_writer->startSession(MediaTime{});
    startReadingAudio();
    m_ports.log.reset();
    logStart();
    return {};
}

Result<void, ExportFailure> ExportRun::addVideoInput() {
    const FrameSize size = m_composer->frameSize();
    auto input = m_writer->addVideoInput({
        .codec = VideoCodec::hevc,
        .width = size.width,
        .height = size.height,
        .bitRate = exportBitRate(size.width, size.height),
        .expectedFrameRate = static_cast<int>(m_project.outputSettings.fps),
        .isDraft = m_ports.isDraft,
    });
    if (!input) {
        return fail(ExportFailure(std::move(input.error())));
    }
    m_videoInput = *input;
    return {};
}

/// The first track of sound becomes the film's, in mono.
Result<void, ExportFailure> ExportRun::addAudioInput() {
    if (m_asset.audioTracks.empty()) {
        return {};
    }
    auto input = m_writer->addAudioInput({.channels = 1, .sampleRate = 44100, .bitRate = 128'000});
    if (!input) {
        return fail(ExportFailure(std::move(input.error())));
    }
    m_audioInput = *input;
    return {};
}

/// One reader serves all ranges. Sound that can't be read leaves a silent film.
void ExportRun::startReadingAudio() {
    if (m_audioInput) {
        auto reader = m_ports.media.makeAudioReader(m_asset, m_asset.audioTracks.front());
        m_isSoundDamaged = !reader;
        m_audio = AudioPump(reader ? *std::move(reader) : nullptr, *m_audioInput, m_timeline);
    }
}

Result<void, ExportFailure> ExportRun::writeRanges(const VideoExportService::Progress& progress) {
    for (std::size_t i = 0; i < m_timeline.ranges.size() && !hasWriterEnded(); ++i) {
        if (m_ports.isCancelled) {
            return fail(ExportFailure(ExportError::cancelled));
        }
        if (auto written = writeRange(i, progress); !written) {
            return written;
        }
    }
    return {};
}

Result<void, ExportFailure> ExportRun::writeRange(std::size_t index,
                                                  const VideoExportService::Progress& progress) {
    const TimeRange& range = m_timeline.ranges[index];
    m_ports.log.log(fmt::format("Range {}: {}-{}, duration={}, outputOffset={}", index,
                                logText(range.start), logText(range.end),
                                logText(range.end - range.start),
                                logText(m_timeline.outputOffsets[index])));
    auto state = openRange(index);
    if (!state) {
        return fail(std::move(state.error()));
    }
    for (std::int64_t n = 0; n < state->frames && !hasWriterEnded(); ++n) {
        if (auto written = writeFrame(*state, n, progress); !written) {
            return written;
        }
    }
    if (state->source.reader().status() == AssetReaderStatus::failed) {
        m_isSourceDamaged = true;
    }
    m_ports.log.log(
        fmt::format("Range {} COMPLETE. globalFrameIndex={}", index, m_globalFrameIndex));
    return {};
}

Result<ExportRun::RangeState, ExportFailure> ExportRun::openRange(std::size_t index) {
    const TimeRange& range = m_timeline.ranges[index];
    auto reader =
        m_ports.media.makeVideoReader(m_asset, m_asset.videoTracks.front(), mediaRange(range));
    if (!reader) {
        return fail(ExportFailure(std::move(reader.error())));
    }
    if (range.start >= endOfVideo(m_asset)) {
        (*reader)->cancelReading(); // a range beyond the video writes nothing
    }
    return RangeState{range.start, m_timeline.outputOffsets[index], framesOf(range),
                      SourceFrames(*std::move(reader)), openCameraRange(range)};
}

CameraFrames ExportRun::openCameraRange(const TimeRange& range) const {
    return m_camera ? CameraFrames(m_ports.media, *m_camera, m_project.cameraStartDelay, range,
                                   range.start)
                    : CameraFrames();
}

Result<void, ExportFailure> ExportRun::writeFrame(RangeState& range, std::int64_t n,
                                                  const VideoExportService::Progress& progress) {
    if (m_ports.isCancelled) {
        range.source.reader().cancelReading();
        m_writer->cancelWriting();
        return fail(ExportFailure(ExportError::cancelled));
    }
    // A product, not a quotient: the grid is defined by this rounding.
    const double step =
        (1.0 / static_cast<double>(m_project.outputSettings.fps)) * static_cast<double>(n);
    const double sourceTime = range.start + step;
    const double outputTime = range.outputOffset + step;
    if (n % kFramesPerLogLine == 0) {
        logFrame(range, n, sourceTime, outputTime);
    }
    range.source.advance(sourceTime);
    if (!range.source.current()) {
        return {};
    }
    range.camera.advance(sourceTime);
    if (auto waited = waitForVideoInput(n); !waited) {
        return waited;
    }
    if (!appendPicture(range, outputTime)) {
        return {};
    }
    m_audio.pumpUntil(sourceTime);
    ++m_globalFrameIndex;
    progress(static_cast<double>(m_globalFrameIndex) / static_cast<double>(m_totalFrames));
    return {};
}

/// Composes and appends the picture of a grid point, or repeats the last one where
/// nothing has changed. False when there was no memory for it.
///
/// Kept on purpose: what append says doesn't count; a grid point that the file
/// can't hold is left out.
bool ExportRun::appendPicture(const RangeState& range, double outputTime) {
    const PixelBufferPtr& frame = range.source.current();
    const PixelBufferPtr& camera = range.camera.current();
    const MediaTime time = MediaTime::fromSeconds(outputTime);
    if (m_isLastInFilm && m_composer->isRepeat(frame, camera, outputTime)) {
        m_videoInput->appendRepeat(time);
        return true;
    }
    std::shared_ptr<PixelBuffer> buffer = m_videoInput->makePixelBuffer();
    if (!buffer) {
        return false;
    }
    m_composer->composeFrame(frame, camera, outputTime, *buffer);
    m_isLastInFilm = m_videoInput->append(std::move(buffer), time);
    return true;
}

Result<void, ExportFailure> ExportRun::waitForVideoInput(std::int64_t n) {
    for (std::int64_t count = 1; !m_videoInput->isReadyForMoreMediaData(); ++count) {
        if (hasWriterEnded()) {
            return {}; // it will never be ready again; the report tells why
        }
        if (count % kWaitsPerLogLine == 0) {
            m_ports.log.log(fmt::format(
                "  WAITING for writer (count={}) frame={} writerStatus={} audioExhausted={}", count,
                n, number(m_writer->status()), m_audio.isExhausted()));
        }
        if (m_ports.isCancelled) {
            return fail(ExportFailure(ExportError::cancelled));
        }
        makeUseOfWait();
    }
    return {};
}

/// Feeds the sound while the pictures have to wait, else sleeps.
void ExportRun::makeUseOfWait() {
    if (m_audio.canPump()) {
        m_audio.pumpOne();
    } else if (m_audio.isExhausted() && m_audio.markAsFinished()) {
        m_ports.log.log("  Audio marked finished (exhausted during writer wait)");
    } else {
        m_ports.sleep(kWaitStep);
    }
}

/// Kept on purpose: sound that is unread when the film first stops taking it is
/// lost. One that waits for pictures which will not come is not waited for.
Result<void, ExportFailure> ExportRun::drainAudio() {
    const bool isStopped = m_audio.drain();
    while (isStopped && !m_audio.isInputReady() && !m_videoInput->isReadyForMoreMediaData() &&
           !hasWriterEnded()) {
        m_ports.sleep(kWaitStep);
        if (m_ports.isCancelled) {
            return fail(ExportFailure(ExportError::cancelled));
        }
    }
    return {};
}

Result<ExportReport, ExportFailure> ExportRun::finish() {
    m_ports.log.log(
        fmt::format("All ranges done, draining remaining audio. globalAudioExhausted={}",
                    m_audio.isExhausted()));
    if (auto drained = drainAudio(); !drained) {
        return fail(std::move(drained.error()));
    }
    m_videoInput->markAsFinished();
    m_audio.markAsFinished();
    m_ports.log.log("All ranges done, finishing writer...");
    auto finished = m_writer->finishWriting();
    m_ports.log.log(fmt::format("Export DONE. writerStatus={}", number(m_writer->status())));
    ExportReport report{m_writer->status(), m_writer->error(), m_globalFrameIndex,
                        m_isSourceDamaged, m_isSoundDamaged || m_audio.isDamaged()};
    if (!finished && !report.writerError) {
        report.writerError = std::move(finished.error());
    }
    return report;
}

std::int64_t ExportRun::framesFor(double seconds) const {
    return static_cast<std::int64_t>(
        std::ceil(seconds * static_cast<double>(m_project.outputSettings.fps)));
}

std::int64_t ExportRun::framesOf(const TimeRange& range) const {
    return framesFor(range.end - range.start);
}

bool ExportRun::hasWriterEnded() const {
    return m_writer->status() != AssetWriterStatus::writing;
}

void ExportRun::logStart() const {
    const auto& ranges = m_timeline.ranges;
    m_ports.log.log(fmt::format("Export start: {} ranges, totalFrames={}, outputDuration={}",
                                ranges.size(), m_totalFrames, logText(m_timeline.duration())));
    m_ports.log.log(fmt::format("Keep ranges: {}", rangeTexts(ranges)));
}

void ExportRun::logFrame(RangeState& range, std::int64_t n, double sourceTime,
                         double outputTime) const {
    m_ports.log.log(fmt::format("  frame {}/{} src={:.2f} out={:.2f} writerOK={} readerOK={}", n,
                                range.frames, sourceTime, outputTime, number(m_writer->status()),
                                static_cast<int>(range.source.reader().status())));
}

} // namespace tavi
