#pragma once

#include <cstdint>
#include <mutex>
#include <pipewire/pipewire.h>
#include <string>
#include <vector>

namespace tavi::test {

/// A speaker that nobody hears, and what it played when: its monitor is recorded.
class FakeSpeaker {
public:
    explicit FakeSpeaker(const std::string& name);
    ~FakeSpeaker(); ///< Unplugged.
    FakeSpeaker(const FakeSpeaker&) = delete;
    FakeSpeaker& operator=(const FakeSpeaker&) = delete;

    /// Host seconds at which the left channel went above a tenth of full scale after at least
    /// `silence` seconds below.
    std::vector<double> onsets(double silence) const;

    /// The loudest sample so far between two host times, in seconds.
    float loudest(double from, double to) const;

    /// Host seconds up to which it was recorded.
    double recordedTo() const;

private:
    struct Callbacks;

    /// What one cycle of the graph played.
    struct Portion {
        std::int64_t host = 0; ///< Nanoseconds, of its first moment.
        std::vector<float> left;
    };

    void process();
    template<class Visit>
    void eachMoment(const Visit& visit) const;

    std::string m_name;
    pw_thread_loop* m_loop;
    pw_stream* m_stream;
    mutable std::mutex m_mutex;
    std::vector<Portion> m_portions;
};

} // namespace tavi::test
