#pragma once

#include "base/Result.h"
#include "capture/CaptureError.h"
#include "capture/ScreenStream.h"

#include <stop_token>

namespace tavi {

enum class Consent { given, declined };

/// Where the desktop asks its user, for each take, what a program may see.
///
/// What was consented to is kept for the take that follows: the stream that is made next for the
/// same filter shows it, and SourceFrames tell its frame. Threads: any, one question at a time.
class SourceConsent {
public:
    virtual ~SourceConsent() = default;

    /// Asks for a display or a window; blocks until there is an answer. At once when the same
    /// was consented to and is not used yet. A stop that is asked for closes the desktop's
    /// question and counts as declined.
    virtual Result<Consent, CaptureError> ask(const ScreenFilter& filter,
                                              const std::stop_token& stop) = 0;

    /// Gives back what was consented to and no stream was made of.
    virtual void release() = 0;
};

} // namespace tavi
