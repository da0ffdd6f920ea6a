#pragma once

#include "capture/CaptureDevices.h"

#include <memory>

namespace tavi {

/// The microphones and cameras of PipeWire. Their ids are the names of their nodes.
class PipeWireDevices final : public CaptureDevices {
public:
    /// `main` outlives the object.
    explicit PipeWireDevices(Executor& main);
    ~PipeWireDevices() override;

    /// PipeWire asks no user: there is access when it answers.
    void requestAccess(CaptureDeviceKind kind, std::function<void(bool)> handler) override;
    Result<std::vector<CaptureDevice>, CaptureDeviceError> devices(CaptureDeviceKind kind) override;
    void setChangeHandler(std::function<void()> handler) override;

private:
    class Watcher;

    std::unique_ptr<Watcher> m_watcher;
};

} // namespace tavi
