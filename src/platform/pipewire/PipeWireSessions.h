#pragma once

#include "capture/CaptureSession.h"

namespace tavi {

/// Sessions with the microphones and cameras of PipeWire, each device on a connection and a thread
/// of its own.
class PipeWireSessions final : public CaptureSessions {
public:
    std::unique_ptr<CaptureSession> makeSession(CapturePreset preset) override;
};

} // namespace tavi
