#pragma once

#include "capture/HelperLauncher.h"

namespace tavi {

/// Helpers as child processes, their standard output on a pipe that a thread of
/// its own reads.
///
/// Stopping sends signal 15 and reaps the child; one that doesn't end within
/// kPatience is killed.
class PosixHelperLauncher final : public HelperLauncher {
public:
    static constexpr int kPatienceMs = 500; ///< A helper that listens to signals needs far less.

    std::unique_ptr<HelperProcess> launch(const HelperCommand& command,
                                          ChunkHandler onChunk) override;
};

} // namespace tavi
