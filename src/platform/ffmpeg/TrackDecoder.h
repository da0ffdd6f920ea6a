#pragma once

#include "base/Result.h"
#include "media/MediaError.h"
#include "platform/ffmpeg/FfmpegHandles.h"

#include <filesystem>
#include <optional>

namespace tavi {

/// What a decoder is asked for: long stretches of a film, or a few pictures here and there, which
/// are to come soon.
enum class DecoderUse { stretch, jumps };

/// One track of a file on its way through its decoder, packet by packet: what
/// pictures and sound have in common.
///
/// Thread: one at a time; may decode on threads of its own.
class TrackDecoder {
public:
    /// Opens the file and the decoder; `track` is the stream's index in the file and
    /// has to be of `type` (video or audio). Other tracks are not read.
    /// Errors: notFound, notMedia, noVideoTrack, cannotDecode.
    /// `use`: what its threads are made for.
    Result<void, MediaError> open(const std::filesystem::path& path, int track, AVMediaType type,
                                  int threads, DecoderUse use = DecoderUse::stretch);

    /// The next frame; false at the end of the track and when the rest can't be read
    /// (error() tells). Damaged stretches are left out.
    bool decode(AVFrame& frame);

    /// Goes to the key frame at or before `ticks` of the track's clock. False where
    /// the file has no way.
    bool jump(std::int64_t ticks);

    /// Until the next jump(): pictures that no other one refers to need not be given where a later
    /// one lies at or before `ticks` too.
    void hurryTo(std::int64_t ticks);

    /// The time of the latest picture since the last jump() that was left out for the hurry.
    std::optional<std::int64_t> lastHurriedOver() const { return m_lastHurriedOver; }

    /// Whether frames may come in another order than their packets, or at other times than those
    /// are decoded at, which are the times of the file's index.
    bool isReordered() const { return m_isReordered || m_codec->has_b_frames > 0; }

    /// Where the packet read last ends, in ticks; absent where it doesn't say.
    std::optional<std::int64_t> packetEnd() const { return m_packetEnd; }

    /// Why nothing could be read to the end; absent after a whole reading.
    const std::optional<MediaError>& error() const { return m_error; }

    /// The track as the file describes it.
    const AVStream& stream() const { return *m_input->streams[m_track]; }
    const AVFormatContext& input() const { return *m_input; }

private:
    Result<void, MediaError> openCodec(int threads, DecoderUse use);
    MediaError unreadable(const std::string& reason) const;
    void feed();
    void notePacket();
    void chooseSkipping();
    void noteEnd();

    std::filesystem::path m_path;
    int m_track = 0;
    AVMediaType m_type = AVMEDIA_TYPE_UNKNOWN;
    InputHandle m_input;
    CodecHandle m_codec;
    PacketHandle m_packet{av_packet_alloc()};
    std::optional<std::int64_t> m_packetEnd;
    std::optional<std::int64_t> m_hurry;
    std::optional<std::int64_t> m_latestInHurry; ///< Among the packets up to there.
    std::optional<std::int64_t> m_lastHurriedOver;
    bool m_isReordered = false; ///< By the packets so far.
    bool m_isDraining = false;
    bool m_hasPackets = false;
    bool m_hasDecoded = false;
    int m_readErrors = 0; ///< In a row.
    std::optional<MediaError> m_error;
};

} // namespace tavi
