#include "platform/pipewire/PipeWireSoundOutputs.h"

#include "platform/pipewire/PlaybackStream.h"

#include <utility>

namespace tavi {

std::unique_ptr<SoundOutput> PipeWireSoundOutputs::open(std::shared_ptr<SoundSource> source) {
    return std::make_unique<PlaybackStream>(std::move(source));
}

} // namespace tavi
