#include "render/AudioPump.h"

#include <utility>

namespace tavi {

AudioPump::AudioPump(std::unique_ptr<AudioReader> reader, AudioWriterInput& input,
                     const OutputTimeline& timeline)
    : m_reader(std::move(reader)),
      m_input(&input),
      m_ranges(timeline.ranges),
      m_outputOffsets(timeline.outputOffsets),
      m_isExhausted(!m_reader) {}

bool AudioPump::canPump() const {
    return m_input && !m_isExhausted && m_input->isReadyForMoreMediaData();
}

void AudioPump::pumpUntil(double sourceTime) {
    while (canPump()) {
        const auto sample = next();
        if (!sample || append(*sample) == Place::pastEnd ||
            sample->presentationTime.seconds() >= sourceTime) {
            return;
        }
    }
}

void AudioPump::pumpOne() {
    if (canPump()) {
        if (const auto sample = next()) {
            append(*sample);
        }
    }
}

bool AudioPump::drain() {
    while (canPump()) {
        if (const auto sample = next()) {
            append(*sample);
        }
    }
    return m_input && !m_isExhausted;
}

bool AudioPump::markAsFinished() {
    if (!m_input || std::exchange(m_isMarkedFinished, true)) {
        return false;
    }
    m_input->markAsFinished();
    return true;
}

bool AudioPump::isDamaged() const {
    return m_reader && m_reader->status() == AssetReaderStatus::failed;
}

std::optional<AudioSample> AudioPump::next() {
    auto sample = m_reader->copyNextSample();
    m_isExhausted = !sample;
    return sample;
}

/// Hands a piece on if it belongs to a range. The shift is rounded to the grid
/// that the ranges' own times are read on.
AudioPump::Place AudioPump::append(const AudioSample& sample) {
    const double time = sample.presentationTime.seconds();
    for (std::size_t i = 0; i < m_ranges.size(); ++i) {
        if (time < m_ranges[i].start) {
            return Place::inCut;
        }
        if (time < m_ranges[i].end + kTolerance) {
            const double shift = m_outputOffsets[i] - m_ranges[i].start;
            m_input->append(sample.buffer, sample.presentationTime + MediaTime::fromSeconds(shift));
            return Place::inRange;
        }
    }
    m_isExhausted = true;
    return Place::pastEnd;
}

} // namespace tavi
