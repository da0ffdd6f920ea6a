#pragma once

#include "media/AssetReader.h"
#include "media/AssetWriter.h"
#include "render/OutputTimeline.h"

#include <memory>
#include <vector>

namespace tavi {

/// Carries the sound of a take through the cuts of an export, one piece at a
/// time and never faster than the film takes it.
///
/// Whole pieces are kept or dropped: one that begins in a kept range, or up to
/// kTolerance after its end, is heard with that range. What such a tail would
/// lay over the next range's sound is cut off by the writer's input.
/// Threads: one at a time.
class AudioPump {
public:
    static constexpr double kTolerance = 0.05; ///< Seconds.

    /// Of a film without sound.
    AudioPump() = default;

    /// `input` outlives the pump. A null reader is one with nothing to give.
    AudioPump(std::unique_ptr<AudioReader> reader, AudioWriterInput& input,
              const OutputTimeline& timeline);

    /// The reader has nothing more to give, or has passed the last range.
    bool isExhausted() const { return m_isExhausted; }

    /// There is sound left, and the film takes it now.
    bool canPump() const;

    /// Hands on sound up to `sourceTime`, in seconds: stops after the first piece
    /// that begins at or after it, or when the film takes no more.
    void pumpUntil(double sourceTime);

    /// Hands on, or drops, one piece.
    void pumpOne();

    /// Hands on what is left in one stretch. True when the film stopped taking it:
    /// the rest is not read.
    bool drain();

    /// False while the film has sound and takes none at the moment.
    bool isInputReady() const { return !m_input || m_input->isReadyForMoreMediaData(); }

    /// Tells the film that no more sound will come. False where that was told
    /// before, or there is no sound.
    bool markAsFinished();

    /// A part of the sound could not be decoded.
    bool isDamaged() const;

private:
    enum class Place { inRange, inCut, pastEnd };

    std::optional<AudioSample> next();
    Place append(const AudioSample& sample);

    std::unique_ptr<AudioReader> m_reader;
    AudioWriterInput* m_input = nullptr; ///< Null for a film without sound.
    std::vector<TimeRange> m_ranges;
    std::vector<double> m_outputOffsets;
    bool m_isExhausted = false;
    bool m_isMarkedFinished = false;
};

} // namespace tavi
