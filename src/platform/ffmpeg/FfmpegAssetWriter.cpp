#include "platform/ffmpeg/FfmpegAssetWriter.h"

#include "platform/ffmpeg/FfmpegErrors.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <filesystem>
#include <system_error>
#include <utility>

namespace tavi {

namespace {

/// Alpha is plain for the most part; of the bits of the colours it needs one in so many.
constexpr int kAlphaShare = 4;

} // namespace

FfmpegAssetWriter::FfmpegAssetWriter(std::filesystem::path path, FileType type,
                                     EncoderChoice& encoders,
                                     std::shared_ptr<const ColorConverter> colours)
    : m_path(std::move(path)),
      m_timescale(MovieFile::timescale(type)),
      m_encoders(encoders),
      m_colours(std::move(colours)),
      m_file(m_path, type) {}

FfmpegAssetWriter::~FfmpegAssetWriter() {
    cancelWriting();
}

Result<VideoWriterInput*, MediaError>
FfmpegAssetWriter::addVideoInput(const VideoSettings& settings) {
    assert(status() == AssetWriterStatus::unknown);
    const auto colours = addTrack(settings, PictureContent::colours);
    if (!colours || !settings.hasAlpha) {
        return colours;
    }
    VideoSettings alphaSettings = settings;
    alphaSettings.bitRate /= kAlphaShare;
    const auto alpha = addTrack(alphaSettings, PictureContent::alpha);
    if (!alpha) {
        return fail(alpha.error());
    }
    m_pairs.push_back(std::make_unique<AlphaVideoInput>(**colours, **alpha));
    return m_pairs.back().get();
}

Result<FfmpegVideoInput*, MediaError> FfmpegAssetWriter::addTrack(const VideoSettings& settings,
                                                                  PictureContent content) {
    auto encoder = m_encoders.open(settings, m_timescale, m_colours, content);
    if (!encoder) {
        return fail(mediaError(encoder.error().kind, m_path, encoder.error().reason));
    }
    m_inputs.push_back(std::make_unique<FfmpegVideoInput>(settings, std::move(*encoder), m_file,
                                                          m_timescale, m_state, m_path));
    return m_inputs.back().get();
}

Result<AudioWriterInput*, MediaError>
FfmpegAssetWriter::addAudioInput(const AudioSettings& settings) {
    assert(status() == AssetWriterStatus::unknown);
    auto encoder = AudioEncoder::open(settings);
    if (!encoder) {
        return fail(mediaError(MediaError::Kind::noEncoder, m_path, encoder.error()));
    }
    m_sounds.push_back(std::make_unique<FfmpegAudioInput>(
        settings, std::move(*encoder), m_file, m_state, m_path, [this] { return picturesEnd(); }));
    return m_sounds.back().get();
}

/// Up to where all tracks of pictures that still grow have them, in seconds;
/// absent where none grows.
std::optional<double> FfmpegAssetWriter::picturesEnd() const {
    std::optional<double> end;
    for (const auto& input : m_inputs) {
        if (const std::optional<double> own = input->appendedSeconds()) {
            end = std::min(end.value_or(*own), *own);
        }
    }
    return end;
}

Result<void, MediaError> FfmpegAssetWriter::startWriting() {
    assert(status() == AssetWriterStatus::unknown && !m_inputs.empty());
    auto opened = m_file.open();
    if (!opened) {
        m_state.fail(opened.error());
        return opened;
    }
    m_state.set(AssetWriterStatus::writing);
    for (const auto& input : m_inputs) {
        input->begin();
    }
    for (const auto& sound : m_sounds) {
        sound->begin();
    }
    return {};
}

void FfmpegAssetWriter::startSession(MediaTime time) {
    m_sessionStart = time;
    for (const auto& input : m_inputs) {
        input->setSessionStart(time);
    }
    for (const auto& sound : m_sounds) {
        sound->setSessionStart(time);
    }
}

void FfmpegAssetWriter::endSession(MediaTime time) {
    m_sessionEnd = time;
}

/// All inputs work on what they have at the same time.
void FfmpegAssetWriter::drainInputs() {
    for (const auto& input : m_inputs) {
        input->markAsFinished();
    }
    std::optional<double> end;
    if (m_sessionStart && m_sessionEnd) {
        end = (*m_sessionEnd - *m_sessionStart).seconds();
    }
    for (const auto& sound : m_sounds) {
        sound->drain(end);
    }
    for (const auto& input : m_inputs) {
        input->drain();
    }
}

Result<void, MediaError> FfmpegAssetWriter::finishWriting() {
    drainInputs();
    if (m_state.isWriting()) {
        auto completed = completeFile();
        if (!completed) {
            m_state.fail(completed.error());
            return completed;
        }
        m_state.set(AssetWriterStatus::completed);
    }
    if (status() == AssetWriterStatus::failed) {
        m_file.salvage();
        return fail(*error());
    }
    return {};
}

Result<void, MediaError> FfmpegAssetWriter::completeFile() {
    if (!m_file.hasPictures()) {
        m_file.abandon();
        return {};
    }
    std::optional<std::int64_t> end;
    if (m_sessionStart && m_sessionEnd) {
        end = (*m_sessionEnd - *m_sessionStart).rescaled(m_timescale).value;
    }
    auto finished = m_file.finish(end);
    std::error_code error;
    if (finished && !std::filesystem::exists(m_path, error)) {
        // It was deleted or moved meanwhile, which nothing that is open hears of.
        return fail(writeError(m_path, AVERROR(ENOENT)));
    }
    return finished;
}

void FfmpegAssetWriter::cancelWriting() {
    const AssetWriterStatus before = status();
    if (before == AssetWriterStatus::writing) {
        m_state.set(AssetWriterStatus::cancelled);
    }
    for (const auto& input : m_inputs) {
        input->stop();
    }
    for (const auto& sound : m_sounds) {
        sound->stop();
    }
    if (before == AssetWriterStatus::writing) {
        m_file.abandon();
    } else if (before == AssetWriterStatus::failed) {
        m_file.salvage();
    }
}

std::string FfmpegAssetWriter::encoderName() const {
    return m_inputs.empty() ? std::string() : m_inputs.front()->encoderName();
}

} // namespace tavi
