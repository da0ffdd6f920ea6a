#include "capture/CaptureSession.h"

#include <algorithm>

namespace tavi {

AudioSettings recommendedMovieAudio(const AudioSampleFormat& format) {
    return {.channels = std::clamp(format.channels, 1, 2),
            .sampleRate = format.sampleRate == 44100 ? 44100 : 48000,
            .bitRate = 128'000,
            .realTime = true};
}

} // namespace tavi
