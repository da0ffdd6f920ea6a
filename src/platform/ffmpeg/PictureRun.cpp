#include "platform/ffmpeg/PictureRun.h"

#include <algorithm>

namespace tavi {

namespace {

/// What is kept around the playhead: stepping back decodes from the key frame only once in so
/// many pictures (32 at 1920x1080).
constexpr std::size_t kMostBytes = std::size_t{100} << 20;

std::size_t bytesOf(const AVFrame& frame) {
    std::size_t bytes = 0;
    for (const AVBufferRef* buffer : frame.buf) {
        bytes += buffer != nullptr ? buffer->size : 0;
    }
    return bytes;
}

} // namespace

void PictureRun::restart(bool isTrackStart) {
    m_pictures.clear();
    m_bytes = 0;
    m_isTrackStart = isTrackStart;
    m_isTrackEnd = false;
}

void PictureRun::append(DecodedPicture picture, MediaTime needed) {
    m_bytes += bytesOf(*picture.frame);
    m_pictures.push_back(std::move(picture));
    while (m_bytes > kMostBytes && m_pictures.size() > 1 && m_pictures[1].time <= needed) {
        m_bytes -= bytesOf(*m_pictures.front().frame);
        m_pictures.pop_front();
        m_isTrackStart = false;
    }
}

PictureRun::Pictures::const_iterator PictureRun::firstAfter(MediaTime time) const {
    return std::upper_bound(m_pictures.begin(), m_pictures.end(), time,
                            [](MediaTime t, const DecodedPicture& p) { return t < p.time; });
}

/// Whether the picture appended last is in force at `time`, which is not before it.
bool PictureRun::isBackInForce(MediaTime time) const {
    const auto end = m_pictures.back().end;
    return m_isTrackEnd || (end && time < *end);
}

const DecodedPicture* PictureRun::inForce(MediaTime time) const {
    const auto next = firstAfter(time);
    if (m_pictures.empty() || (next == m_pictures.end() && !isBackInForce(time))) {
        return nullptr;
    }
    if (next == m_pictures.begin()) {
        return m_isTrackStart ? &*next : nullptr;
    }
    return &*(next - 1);
}

const DecodedPicture* PictureRun::latest(MediaTime time) const {
    const auto next = firstAfter(time);
    return next == m_pictures.begin() ? nullptr : &*(next - 1);
}

const DecodedPicture* PictureRun::after(MediaTime time) const {
    const auto next = firstAfter(time);
    return next == m_pictures.end() ? nullptr : &*next;
}

std::size_t PictureRun::countAfter(MediaTime time) const {
    return static_cast<std::size_t>(m_pictures.end() - firstAfter(time));
}

} // namespace tavi
