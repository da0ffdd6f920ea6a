#include "platform/ffmpeg/ItemTimeline.h"

#include <algorithm>

namespace tavi {

namespace {

/// Before an item's end nothing is nearer to it.
constexpr MediaTime kLeast{1, MediaTime::kNanoseconds};

} // namespace

ItemTimeline ItemTimeline::ofFile(std::optional<MediaTime> length) {
    ItemTimeline timeline;
    timeline.m_end = length;
    return timeline;
}

ItemTimeline ItemTimeline::ofDelayedTrack(const DelayedTrack& track) {
    ItemTimeline timeline;
    timeline.m_start = track.start;
    timeline.m_end = track.start + track.duration;
    return timeline;
}

MediaTime ItemTimeline::limited(MediaTime time) const {
    const MediaTime least{0, time.timescale};
    return m_end ? std::clamp(time, least, std::max(*m_end, least)) : std::max(time, least);
}

std::optional<MediaTime> ItemTimeline::trackTime(MediaTime itemTime) const {
    if (itemTime < m_start) {
        return std::nullopt;
    }
    // What stands at the end is what was shown just before it.
    const bool isOver = m_end && itemTime >= *m_end && *m_end > m_start;
    return (isOver ? *m_end - kLeast : itemTime) - m_start;
}

} // namespace tavi
