#pragma once

#include "base/Result.h"
#include "media/AssetWriter.h"
#include "platform/ffmpeg/FfmpegHandles.h"
#include "platform/ffmpeg/PlainMovie.h"

#include <atomic>
#include <chrono>
#include <filesystem>
#include <mutex>
#include <optional>
#include <vector>

namespace tavi {

/// The file of a writer while packets go into it.
///
/// quickTimeMovie: written in fragments of about half a second, the first one a picture, straight
/// to its path, so that what is there can be read at any time, also after the process
/// was killed; finish() turns it into a plain indexed file. mp4: written beside
/// its path under a hidden name and renamed when it is whole.
///
/// One picture of each track is held back until the next one tells how long it
/// lasts. Sound that starts before the zero of its track (the encoder's priming) is
/// hidden by an edit list.
/// Threads: write() and flushIfDue() any, also at once; the rest one at a time.
class MovieFile {
public:
    MovieFile(std::filesystem::path path, FileType type);

    /// Closes the file and leaves it where it is, without completing it.
    ~MovieFile();

    MovieFile(const MovieFile&) = delete;
    MovieFile& operator=(const MovieFile&) = delete;

    /// Ticks per second of the tracks of a file: a multiple of every frame rate
    /// for mp4; for live takes fine enough that a rounded time is right to 6 µs.
    static int timescale(FileType type);

    /// Adds a track of what `encoder` makes; its pictures come at most `frameRate`
    /// times a second. A track with a name of its own is not shown by itself. Returns the track's
    /// index. Before open().
    int addTrack(const AVCodecContext& encoder, int frameRate, const char* name = nullptr);

    /// Adds a track of the sound that `encoder` makes, whose packets are in ticks
    /// of its sample rate and begin `initial_padding` before 0. Before open().
    int addSoundTrack(const AVCodecContext& encoder);

    /// Creates the file and writes its header. Errors: cannotWrite, diskFull.
    Result<void, MediaError> open();

    /// Takes the packet, in ticks of timescale() (sound: of its rate). Returns a library code,
    /// negative when the file can't be written.
    int write(int track, AVPacket& packet);

    /// Brings pictures to the disk that were held back for half a second or more.
    int flushIfDue();

    /// True once a picture came.
    bool hasPictures() const { return m_hasPictures; }

    /// Completes the file. The last picture lasts until `endTicks`, else for
    /// one interval of the track's frame rate; sound ends there too at the latest (a
    /// movie's only; in an mp4 what was written stays). Errors: cannotWrite, diskFull; a
    /// movie whose index can't be written stays as it is and is no error.
    Result<void, MediaError> finish(std::optional<std::int64_t> endTicks);

    /// After a failed write: closes the file. A movie is cut back to its last
    /// whole fragment, an mp4 is removed. Nothing once the file is closed.
    void salvage();

    /// Closes and removes the file. Nothing once the file is closed.
    void abandon();

private:
    struct Track {
        int index = 0;
        bool isSound = false;
        int timescale = 1;         ///< Ticks per second.
        std::int64_t shift = 0;    ///< Added to times, so that none in the file is below 0.
        std::int64_t interval = 1; ///< Ticks from one picture to the next.
        PacketHandle held;         ///< Empty while its `data` is null.
        std::chrono::steady_clock::time_point heldSince;
        std::int64_t lastPts = 0;      ///< Of the last picture written, in ticks.
        std::int64_t lastDuration = 1; ///< Ticks that the last picture lasts.
    };

    bool isFragmented() const { return m_type == FileType::quickTimeMovie; }
    AVStream& newStream(const AVCodecContext& encoder, int timescale);
    int writeHeader();
    int writeFragmentedHeader(Options& options);
    int flushIfFirst();
    int flushIfFull();
    int writePacket(Track& track, AVPacket& packet);
    int writeHeld(Track& track, std::int64_t duration);
    int flushFragment();
    int writeRest(std::optional<std::int64_t> endTicks);
    int closeHandle();
    Result<void, MediaError> publish(std::optional<std::int64_t> endTicks);

    const std::filesystem::path m_path;
    const FileType m_type;
    const std::filesystem::path m_workingPath; ///< Where the bytes go until finish().
    std::mutex m_mutex;
    OutputHandle m_output;
    std::vector<Track> m_tracks;
    bool m_isOpen = false;
    std::atomic<bool> m_hasPictures = false;
    std::optional<std::chrono::steady_clock::time_point>
        m_fragmentSince;  ///< Set while one is open.
    bool m_opens = false; ///< A picture is in the file of a take.
    std::int64_t m_fragmentBytes = 0;
    std::int64_t m_wholeBytes = 0;       ///< Up to the end of the last fragment.
    std::unique_ptr<PlainMovie> m_plain; ///< What it becomes; null where nothing can be prepared.
};

} // namespace tavi
