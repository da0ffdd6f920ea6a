#include "platform/ffmpeg/FfmpegAudioInput.h"

#include "platform/ffmpeg/FfmpegErrors.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace tavi {

namespace {

/// Sound that may wait for the encoder: so much that one that is starved by the
/// encoder of the pictures loses nothing, and still only megabytes.
constexpr double kQueueSeconds = 10;

/// Offline the sound stays so close to the pictures that both lie side by side
/// in the file.
constexpr double kMostAhead = 1;

/// Moments of silence that are made at once.
constexpr std::int64_t kSilence = 16384;

double secondsIn(const AudioBuffer& buffer) {
    return static_cast<double>(buffer.frames()) / buffer.sampleRate;
}

} // namespace

FfmpegAudioInput::FfmpegAudioInput(const AudioSettings& settings,
                                   std::unique_ptr<AudioEncoder> encoder, MovieFile& file,
                                   WriterState& state, std::filesystem::path target,
                                   PicturesEnd picturesEnd)
    : m_settings(settings),
      m_encoder(std::move(encoder)),
      m_file(file),
      m_state(state),
      m_target(std::move(target)),
      m_picturesEnd(std::move(picturesEnd)),
      m_track(file.addSoundTrack(m_encoder->context())),
      m_sink([this](AVPacket& packet) { return m_writeCode = m_file.write(m_track, packet); }),
      m_timeline(settings.sampleRate, settings.realTime),
      m_last(std::numeric_limits<std::int64_t>::max()),
      m_resampler(settings.sampleRate, settings.channels, settings.realTime) {}

FfmpegAudioInput::~FfmpegAudioInput() {
    stop();
}

bool FfmpegAudioInput::hasRoom() const {
    return m_state.isWriting() && !m_isFinished && !m_isStopped && m_queuedSeconds < kQueueSeconds;
}

bool FfmpegAudioInput::isReadyForMoreMediaData() const {
    const std::optional<double> pictures = m_settings.realTime ? std::nullopt : m_picturesEnd();
    const std::lock_guard lock(m_mutex);
    const double end = static_cast<double>(m_timeline.end()) / m_settings.sampleRate;
    return hasRoom() && (!pictures || end < *pictures + kMostAhead);
}

bool FfmpegAudioInput::append(AudioBufferPtr buffer, MediaTime time) {
    {
        const std::lock_guard lock(m_mutex);
        const bool isSound = buffer && buffer->sampleRate > 0 && buffer->frames() > 0;
        if (!isSound || !hasRoom() || !m_sessionStart) {
            return false;
        }
        const auto placement = m_timeline.place(*buffer, time - *m_sessionStart);
        if (!placement) {
            return false;
        }
        m_queuedSeconds += secondsIn(*buffer);
        m_queue.push_back({std::move(buffer), *placement});
    }
    m_changed.notify_all();
    return true;
}

void FfmpegAudioInput::markAsFinished() {
    {
        const std::lock_guard lock(m_mutex);
        m_isFinished = true;
    }
    m_changed.notify_all();
}

void FfmpegAudioInput::begin() {
    m_thread = std::thread([this] { run(); });
}

void FfmpegAudioInput::setSessionStart(MediaTime time) {
    const std::lock_guard lock(m_mutex);
    m_sessionStart = time;
}

void FfmpegAudioInput::drain(std::optional<double> end) {
    {
        const std::lock_guard lock(m_mutex);
        m_isFinished = true;
        m_last = m_timeline.end();
        if (end) {
            m_last = std::min<std::int64_t>(m_last, std::llround(*end * m_settings.sampleRate));
        }
    }
    m_changed.notify_all();
    join();
}

void FfmpegAudioInput::stop() {
    {
        const std::lock_guard lock(m_mutex);
        m_isStopped = true;
        m_queue.clear();
    }
    m_changed.notify_all();
    join();
}

void FfmpegAudioInput::join() {
    if (m_thread.joinable()) {
        m_thread.join();
    }
}

/// False at the end of the track.
bool FfmpegAudioInput::waitForPiece(Piece& piece) {
    std::unique_lock lock(m_mutex);
    m_changed.wait(lock, [this] { return !m_queue.empty() || m_isFinished || m_isStopped; });
    if (m_isStopped || m_queue.empty()) {
        return false;
    }
    piece = std::move(m_queue.front());
    m_queue.pop_front();
    m_queuedSeconds = m_queue.empty() ? 0 : m_queuedSeconds - secondsIn(*piece.buffer);
    return true;
}

void FfmpegAudioInput::run() {
    Piece piece;
    while (waitForPiece(piece)) {
        if (m_state.isWriting()) {
            check(encodePiece(piece));
        }
        piece.buffer.reset();
    }
    if (m_state.isWriting()) {
        check(finishTrack());
    }
}

std::size_t FfmpegAudioInput::samplesIn(std::int64_t moments) const {
    return static_cast<std::size_t>(moments) * static_cast<std::size_t>(m_settings.channels);
}

int FfmpegAudioInput::encodePiece(const Piece& piece) {
    const AudioBuffer& buffer = *piece.buffer;
    const SoundPlacement& placement = piece.placement;
    int code = placement.isNewStretch ? beginStretch(piece) : 0;
    if (placement.stretch != 0) {
        code = m_resampler.stretch(static_cast<int>(placement.stretch),
                                   m_settings.sampleRate * FfmpegAudioTimeline::kStretchSeconds);
    }
    if (code >= 0) {
        const float* first = buffer.samples.data() + placement.cut * buffer.channels;
        const std::array planes{reinterpret_cast<const std::uint8_t*>(first)};
        const auto frames = static_cast<std::int64_t>(buffer.frames()) - placement.cut;
        code = m_resampler.convert(planes.data(), static_cast<int>(frames), m_sound);
    }
    return code < 0 ? code : encodeSound();
}

/// Ends the stretch before and fills the track up to the start of the new one.
int FfmpegAudioInput::beginStretch(const Piece& piece) {
    m_resampler.flush(m_sound);
    const std::int64_t missing = std::max<std::int64_t>(piece.placement.start - m_encoded, 0);
    m_sound.resize(std::min(m_sound.size(), samplesIn(missing)));
    int code = encodeSound();
    if (code >= 0) {
        code = encodeSilence(piece.placement.start - m_encoded);
    }
    return code < 0 ? code
                    : m_resampler.open(
                          {AV_SAMPLE_FMT_FLT, piece.buffer->sampleRate, piece.buffer->channels, 0});
}

int FfmpegAudioInput::encodeSilence(std::int64_t moments) {
    int code = 0;
    while (code >= 0 && moments > 0 && m_state.isWriting()) {
        const std::int64_t some = std::min(moments, kSilence);
        m_sound.assign(samplesIn(some), 0.0F);
        code = encodeSound();
        moments -= some;
    }
    return code;
}

/// Gives the encoder all that is resampled, as far as the track reaches.
int FfmpegAudioInput::encodeSound() {
    std::int64_t last = 0;
    {
        const std::lock_guard lock(m_mutex);
        last = m_last;
    }
    const std::int64_t left = std::max<std::int64_t>(last - m_encoded, 0);
    const auto moments = static_cast<std::int64_t>(m_sound.size()) / m_settings.channels;
    m_sound.resize(samplesIn(std::min(moments, left)));
    m_encoded += std::min(moments, left);
    const int code = m_encoder->encode(m_sound, m_sink);
    m_sound.clear();
    return code;
}

int FfmpegAudioInput::finishTrack() {
    m_resampler.flush(m_sound);
    int code = encodeSound();
    if (code >= 0 && m_encoded > 0) {
        code = m_encoder->drain(m_sink);
    }
    return code;
}

/// Turns a failure into the writer's.
void FfmpegAudioInput::check(int code) {
    if (code >= 0 || !m_state.isWriting()) {
        return;
    }
    m_state.fail(m_writeCode < 0 ? writeError(m_target, m_writeCode)
                                 : mediaError(MediaError::Kind::cannotEncode, m_target,
                                              "sound: " + ffmpegReason(code)));
}

} // namespace tavi
