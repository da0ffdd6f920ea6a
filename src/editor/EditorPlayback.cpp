#include "editor/EditorPlayback.h"

#include "editor/TrimEdits.h"
#include "project/RecordingFolder.h"

#include <utility>

namespace tavi {

namespace {

constexpr MediaTime kTick{1, 30};

/// Between the command to play and the first moment played: both players reach the
/// same tick of the host clock in it.
constexpr double kLead = 0.05; // seconds

void call(const std::function<void()>& observer) {
    if (observer) {
        observer();
    }
}

/// The end of the cut that `time` lies in. A seek to that end reaches the nearest tick of its
/// clock, which may be a little earlier and counts as outside.
std::optional<double> cutToSkip(const TrimState& trim, MediaTime time) {
    const auto end = TrimEdits::endOfCutAt(trim, time.seconds());
    return end && time < MediaTime::fromSeconds(*end) ? end : std::nullopt;
}

} // namespace

EditorPlayback::EditorPlayback(Ports ports, const std::filesystem::path& folder,
                               Observers observers)
    : m_ports(std::move(ports)),
      m_observers(std::move(observers)),
      m_player(m_ports.players.makePlayer({folder / take::kVideo, {}})) {
    std::error_code error;
    if (std::filesystem::exists(folder / take::kCamera, error)) {
        m_cameraPlayer = m_ports.players.makePlayer({folder / take::kCamera, {}});
    }
    m_player->setPeriodicTimeObserver(kTick, [this](MediaTime time) { tick(time); });
    m_player->setEndObserver([this] { endReached(); });
}

void EditorPlayback::awaitCamera() {
    m_isCameraReady = false;
    call(m_observers.isCameraReady);
}

void EditorPlayback::cameraIsReady(const PlayerItem& item) {
    m_cameraPlayer->replaceCurrentItem(item);
    m_isCameraReady = true;
    call(m_observers.isCameraReady);
}

void EditorPlayback::togglePlayback() {
    if (!m_isCameraReady) {
        return;
    }
    if (m_isPlaying) {
        pause();
    } else {
        play();
    }
}

void EditorPlayback::play() {
    const TrimState& trim = m_ports.trim();
    if (!trim.isUntrimmed() &&
        (m_currentTime < trim.inPoint || m_currentTime >= TrimEdits::end(trim, m_duration))) {
        seek(trim.inPoint);
    }
    const MediaTime start = m_ports.clock.hostTime() + MediaTime::fromSeconds(kLead);
    const MediaTime time = m_player->currentTime();
    m_player->setRate(1.0, time, start);
    if (m_cameraPlayer) {
        m_cameraPlayer->setRate(1.0, time, start);
    }
    m_isPlaying = true;
    call(m_observers.isPlaying);
}

void EditorPlayback::pause() {
    m_player->pause();
    if (m_cameraPlayer) {
        m_cameraPlayer->pause();
    }
    m_isPlaying = false;
    call(m_observers.isPlaying);
}

void EditorPlayback::seek(double time) {
    const MediaTime target = MediaTime::fromSeconds(time);
    m_player->seek(target);
    if (m_cameraPlayer && m_isCameraReady) {
        m_cameraPlayer->seek(target);
    }
    m_currentTime = time;
    call(m_observers.currentTime);
}

void EditorPlayback::tick(MediaTime time) {
    m_currentTime = time.seconds();
    call(m_observers.currentTime);
    const TrimState& trim = m_ports.trim();
    if (!m_isPlaying || trim.isUntrimmed()) {
        return;
    }
    if (TrimEdits::end(trim, m_duration) <= m_currentTime) {
        pause();
    } else if (const auto end = cutToSkip(trim, time)) {
        seek(*end);
    }
}

void EditorPlayback::endReached() {
    pause();
    seek(m_ports.trim().inPoint);
}

} // namespace tavi
