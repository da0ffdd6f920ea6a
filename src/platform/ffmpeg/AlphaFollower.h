#pragma once

#include "platform/ffmpeg/VideoDecoder.h"

namespace tavi {

/// The alpha of a track's pictures, out of the track beside it (see kAlphaTrackName).
///
/// Thread: one at a time.
class AlphaFollower {
public:
    /// `track` is the alpha's stream in the file. Null where it can't be decoded: pictures are
    /// opaque then.
    static std::unique_ptr<AlphaFollower> open(const std::filesystem::path& path, int track);

    /// What is asked for next may lie far from what was asked for last.
    void jump() { m_mustSeek = true; }

    /// The alpha picture in force at `time`, before the first one that; null where none is.
    /// Fastest where the times go forward.
    const AVFrame* at(MediaTime time);

private:
    explicit AlphaFollower(std::unique_ptr<VideoDecoder> decoder) : m_decoder(std::move(decoder)) {}

    struct Picture {
        FrameHandle frame{av_frame_alloc()};
        MediaTime time;

        bool isThere() const { return frame->buf[0] != nullptr; }
    };

    void decodeNext();
    void advance();

    std::unique_ptr<VideoDecoder> m_decoder;
    Picture m_current;
    Picture m_next;
    bool m_mustSeek = true;
};

} // namespace tavi
