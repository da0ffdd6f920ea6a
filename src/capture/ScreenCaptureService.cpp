#include "capture/ScreenCaptureService.h"

#include <utility>

namespace tavi {

namespace {

int roundedUpToEven(int length) {
    return length + length % 2;
}

CaptureError writerError(const MediaError& error) {
    return {CaptureError::Kind::writer, {}, error.message()};
}

} // namespace

ScreenCaptureService::ScreenCaptureService(ScreenStreams& streams, MediaLibrary& media,
                                           const Clock& clock)
    : m_streams(streams),
      m_media(media),
      m_clock(clock) {}

ScreenCaptureService::~ScreenCaptureService() {
    m_isCapturing = false;
    abandonStart();
}

Result<void, CaptureError>
ScreenCaptureService::startCapture(const ScreenFilter& filter, int width, int height,
                                   const std::filesystem::path& outputURL,
                                   const ScreenCaptureOptions& options) {
    width = roundedUpToEven(width);
    height = roundedUpToEven(height);
    ScreenCaptureOptions possible = options;
    possible.alpha = options.alpha && m_streams.hasAlpha(filter);
    auto started = startWriter(width, height, outputURL, possible);
    if (started) {
        started = startStream(filter, width, height);
    }
    if (!started) {
        m_isCapturing = false;
        abandonStart();
    }
    return started;
}

Result<void, CaptureError> ScreenCaptureService::startWriter(int width, int height,
                                                             const std::filesystem::path& outputURL,
                                                             const ScreenCaptureOptions& options) {
    auto writer = m_media.makeWriter(outputURL, FileType::quickTimeMovie);
    if (!writer) {
        return fail(writerError(writer.error()));
    }
    if (auto added = addInputs(**writer, width, height, options); !added) {
        return added;
    }
    if (const auto writing = (*writer)->startWriting(); !writing) {
        return fail(writerError(writing.error()));
    }
    m_assetWriter = std::move(*writer);
    return {};
}

Result<void, CaptureError> ScreenCaptureService::addInputs(AssetWriter& writer, int width,
                                                           int height,
                                                           const ScreenCaptureOptions& options) {
    const auto video = writer.addVideoInput({.codec = VideoCodec::hevc,
                                             .width = width,
                                             .height = height,
                                             .bitRate = kAverageBitRate,
                                             .expectedFrameRate = kExpectedFrameRate,
                                             .realTime = true,
                                             .hasAlpha = options.alpha});
    if (!video) {
        return fail(writerError(video.error()));
    }
    m_videoInput = *video;
    if (!options.audioSettings) {
        return {};
    }
    AudioSettings settings = *options.audioSettings;
    settings.realTime = true;
    const auto audio = writer.addAudioInput(settings);
    if (!audio) {
        return fail(writerError(audio.error()));
    }
    m_audioWriterInput = *audio;
    return {};
}

Result<void, CaptureError> ScreenCaptureService::startStream(const ScreenFilter& filter, int width,
                                                             int height) {
    const ScreenStreamConfiguration configuration{
        .width = width, .height = height, .minimumFrameInterval = {1, kExpectedFrameRate}};
    auto stream = m_streams.makeStream(filter, configuration);
    if (!stream) {
        return fail(stream.error());
    }
    m_stream = std::move(*stream);
    m_queue = std::make_unique<SerialQueue>("com.tavi.capture");
    auto output = m_stream->addStreamOutput(
        *m_queue, [this](const ScreenSample& sample) { return handleSample(sample); });
    if (!output) {
        return output;
    }
    // Frames count from here on and not only once the stream's start returned:
    // a display on which nothing moves sends its first frame and then no other.
    m_isCapturing = true;
    return m_stream->startCapture();
}

void ScreenCaptureService::abandonStart() {
    m_stream.reset();
    m_queue.reset();
    if (m_assetWriter) {
        m_assetWriter->cancelWriting();
    }
    m_assetWriter.reset();
    m_videoInput = nullptr;
    m_audioWriterInput = nullptr;
}

bool ScreenCaptureService::handleSample(const ScreenSample& sample) {
    if (sample.type != ScreenSampleType::screen || !m_isCapturing || !sample.isValid) {
        return true;
    }
    if (!m_sessionStarted) {
        startSession(sample.presentationTime);
    }
    if (sample.movedTo && onSourceMoved) {
        onSourceMoved(*sample.movedTo);
    }
    if (!sample.image) {
        return true;
    }
    const bool taken = m_videoInput != nullptr && m_videoInput->isReadyForMoreMediaData() &&
                       m_videoInput->append(sample.image, sample.presentationTime);
    ++(taken ? m_appendedFrames : m_droppedFrames);
    return taken;
}

/// Kept on purpose: a sample without a picture starts the session as well; its
/// time is the zero of the video either way.
void ScreenCaptureService::startSession(MediaTime time) {
    m_assetWriter->startSession(time);
    m_sessionStartTime.store(m_clock.hostTime());
    m_sessionStarted = true;
    if (onSessionStarted) {
        onSessionStarted();
        onSessionStarted = nullptr;
    }
}

void ScreenCaptureService::stopCapture() {
    if (!m_isCapturing) {
        return;
    }
    const MediaTime end = m_clock.hostTime();
    m_isCapturing = false;
    m_failure = failure();
    if (m_stream) {
        // A stream that can't be stopped is no reason to lose the file.
        static_cast<void>(m_stream->stopCapture());
    }
    m_stream.reset();
    m_queue.reset();
    finishFile(end);
    m_sessionStartTime.clear();
}

void ScreenCaptureService::finishFile(MediaTime end) {
    if (!m_assetWriter) {
        return;
    }
    if (m_sessionStarted) {
        m_assetWriter->endSession(end);
    }
    m_videoInput->markAsFinished();
    if (m_audioWriterInput != nullptr) {
        m_audioWriterInput->markAsFinished();
    }
    const auto finished = m_assetWriter->finishWriting();
    if (!finished && !m_failure) {
        m_failure = writerError(finished.error());
    }
    m_videoInput = nullptr;
    m_audioWriterInput = nullptr;
    m_assetWriter.reset();
}

std::optional<CaptureError> ScreenCaptureService::failure() const {
    if (m_failure) {
        return m_failure;
    }
    if (m_stream) {
        if (auto error = m_stream->failure()) {
            return error;
        }
    }
    if (m_assetWriter && m_assetWriter->status() == AssetWriterStatus::failed) {
        const auto error = m_assetWriter->error();
        return error ? writerError(*error)
                     : CaptureError{CaptureError::Kind::writer,
                                    {},
                                    TAVI_TEXT("Errors", "The video can't be written.")};
    }
    return std::nullopt;
}

} // namespace tavi
