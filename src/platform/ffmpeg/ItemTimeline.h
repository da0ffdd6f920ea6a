#pragma once

#include "media/MediaPlayer.h"

#include <optional>

namespace tavi {

/// Where the pictures of an item lie on the item's timeline.
class ItemTimeline {
public:
    /// A whole file that lasts `length`; absent where that is not known.
    static ItemTimeline ofFile(std::optional<MediaTime> length);
    static ItemTimeline ofDelayedTrack(const DelayedTrack& track);

    /// When the item ends; absent where that is not known.
    const std::optional<MediaTime>& end() const { return m_end; }

    /// Where the track's zero lies.
    MediaTime start() const { return m_start; }

    /// `time` limited to the item.
    MediaTime limited(MediaTime time) const;

    /// The time in the track whose picture is shown at `itemTime`; absent where none is.
    std::optional<MediaTime> trackTime(MediaTime itemTime) const;

private:
    MediaTime m_start;
    std::optional<MediaTime> m_end;
};

} // namespace tavi
