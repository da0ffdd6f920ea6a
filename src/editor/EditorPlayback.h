#pragma once

#include "base/Clock.h"
#include "media/MediaPlayer.h"
#include "project/TrimState.h"

#include <filesystem>
#include <functional>
#include <memory>

namespace tavi {

/// The playhead of an open take: the screen's player and the camera's, in step.
///
/// States: paused -> playing by togglePlayback() once the camera is ready; back to paused by it,
///         at the trim's end and at the file's end. The end of the trim leaves the playhead
///         where it is, the end of the file puts it on the in point.
/// Thread: main.
class EditorPlayback {
public:
    struct Ports {
        MediaPlayers& players;
        const Clock& clock;
        std::function<const TrimState&()> trim; ///< As it is at the moment of the call.
    };

    /// What changed; any may be empty. Called after the change, on the main thread.
    struct Observers {
        std::function<void()> currentTime;
        std::function<void()> isPlaying;
        std::function<void()> isCameraReady;
    };

    /// Opens the videos of a take's folder; the camera's only where there is such a file.
    EditorPlayback(Ports ports, const std::filesystem::path& folder, Observers observers);

    double currentTime() const { return m_currentTime; } ///< Seconds of source video.
    bool isPlaying() const { return m_isPlaying; }
    bool isCameraReady() const { return m_isCameraReady; }
    bool hasCamera() const { return m_cameraPlayer != nullptr; }

    MediaPlayer& player() const { return *m_player; }
    MediaPlayer* cameraPlayer() const { return m_cameraPlayer.get(); }

    /// Seconds; 0 while it isn't known.
    void setDuration(double duration) { m_duration = duration; }

    /// From now on nothing is played, and seeks leave the camera alone, until cameraIsReady().
    void awaitCamera();

    /// The camera plays this item from now on.
    void cameraIsReady(const PlayerItem& item);

    /// Starts both players on one tick, or pauses them. Starts from the in point where the
    /// playhead stands outside of the trim. Nothing while the camera isn't ready.
    void togglePlayback();

    /// Puts the playhead on `time` at once; the players follow. Exact.
    void seek(double time);

private:
    void play();
    void pause();
    void tick(MediaTime time);
    void endReached();

    Ports m_ports;
    Observers m_observers;
    std::unique_ptr<MediaPlayer> m_player;
    std::unique_ptr<MediaPlayer> m_cameraPlayer;
    double m_currentTime = 0;
    double m_duration = 0;
    bool m_isPlaying = false;
    bool m_isCameraReady = true;
};

} // namespace tavi
