#include "platform/ffmpeg/AlphaFollower.h"

#include <utility>

namespace tavi {

std::unique_ptr<AlphaFollower> AlphaFollower::open(const std::filesystem::path& path, int track) {
    auto decoder = VideoDecoder::open(path, track);
    return decoder ? std::unique_ptr<AlphaFollower>(new AlphaFollower(std::move(*decoder)))
                   : nullptr;
}

const AVFrame* AlphaFollower::at(MediaTime time) {
    if (std::exchange(m_mustSeek, false) || time < m_current.time) {
        m_decoder->seek(time);
        decodeNext();
        advance();
    }
    while (m_next.isThere() && m_next.time <= time) {
        advance();
    }
    return m_current.isThere() ? m_current.frame.get() : nullptr;
}

void AlphaFollower::advance() {
    std::swap(m_current, m_next);
    decodeNext();
}

void AlphaFollower::decodeNext() {
    av_frame_unref(m_next.frame.get());
    if (AVFrame* picture = m_decoder->next()) {
        av_frame_move_ref(m_next.frame.get(), picture);
        m_next.time = m_decoder->time();
    }
}

} // namespace tavi
