#include "media/PlayerClock.h"

#include <cassert>

namespace tavi {

namespace {

MediaTime scaled(MediaTime length, double factor) {
    if (factor == 1) {
        return length;
    }
    return MediaTime::fromSeconds(length.seconds() * factor, MediaTime::kNanoseconds);
}

} // namespace

MediaTime PlayerClock::at(MediaTime host) const {
    return isMoving() && host > hostTime ? time + scaled(host - hostTime, rate) : time;
}

MediaTime PlayerClock::hostTimeOf(MediaTime itemTime) const {
    assert(isMoving());
    return itemTime > time ? hostTime + scaled(itemTime - time, 1 / rate) : hostTime;
}

} // namespace tavi
