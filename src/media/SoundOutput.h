#pragma once

#include <cstdint>
#include <memory>
#include <span>

namespace tavi {

/// The one form in which sound is played: 32-bit floats, two channels side by side.
inline constexpr int kPlayedRate = 48000; ///< Hz.
inline constexpr int kPlayedChannels = 2;

/// What an output asks for sound.
class SoundSource {
public:
    virtual ~SoundSource() = default;

    /// Fills `to`, whole moments, with what is to be heard from `hostNanoseconds` of the
    /// host clock (CLOCK_MONOTONIC) on; silence where there is nothing.
    /// Thread: the output's own, which may be a real-time one: never waits, allocates nothing.
    virtual void fill(std::span<float> to, std::int64_t hostNanoseconds) noexcept = 0;
};

/// A way to the machine's speakers.
///
/// Where there are none, or the sound service is not there, nothing is asked for and nothing
/// fails; it is heard as soon as they come.
/// Threads: one at a time; start() and stop() don't wait for the device. The destructor stops:
/// the source is not asked any more.
class SoundOutput {
public:
    virtual ~SoundOutput() = default;

    /// Asks the source from now on, as far ahead as the device wants it.
    virtual void start() = 0;

    /// Leaves the device alone.
    virtual void stop() = 0;
};

/// Makes outputs.
class SoundOutputs {
public:
    virtual ~SoundOutputs() = default;

    /// Never null. May take a second where the sound service doesn't answer. Any thread.
    virtual std::unique_ptr<SoundOutput> open(std::shared_ptr<SoundSource> source) = 0;
};

/// Outputs that nobody hears.
class SilentOutputs final : public SoundOutputs {
public:
    std::unique_ptr<SoundOutput> open(std::shared_ptr<SoundSource>) override {
        return std::make_unique<Silence>();
    }

private:
    class Silence final : public SoundOutput {
        void start() override {}
        void stop() override {}
    };
};

} // namespace tavi
