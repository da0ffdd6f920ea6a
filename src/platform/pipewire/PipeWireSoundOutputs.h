#pragma once

#include "media/SoundOutput.h"

namespace tavi {

/// Outputs through PipeWire, to the speakers of the user's choice and wherever he moves them; each
/// is a connection and a thread of its own, and sleeps while it is stopped.
class PipeWireSoundOutputs final : public SoundOutputs {
public:
    std::unique_ptr<SoundOutput> open(std::shared_ptr<SoundSource> source) override;
};

} // namespace tavi
