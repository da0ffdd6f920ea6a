#include "base/Clock.h"

#include <ctime>

namespace tavi {

Date SystemClock::now() const {
    timespec t{};
    clock_gettime(CLOCK_REALTIME, &t);
    return Date::fromEpoch(static_cast<double>(t.tv_sec) + static_cast<double>(t.tv_nsec) * 1e-9);
}

MediaTime SystemClock::hostTime() const {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return MediaTime::fromNanoseconds(
        static_cast<std::int64_t>(t.tv_sec) * MediaTime::kNanoseconds + t.tv_nsec);
}

} // namespace tavi
