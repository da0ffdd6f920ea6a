#pragma once

#include "capture/CaptureSession.h"
#include "platform/pipewire/PipeWireGraph.h"
#include "platform/pipewire/PodCopy.h"

#include <atomic>
#include <mutex>
#include <optional>
#include <vector>

namespace tavi {

/// One device that delivers samples, whatever happens to it: it may vanish and come back, and so
/// may the daemon.
///
/// States: closed -> opened -> running <-> opened. While it runs, a stream exists whenever the
/// device does. The session manager is told to link the stream to this device only and to leave
/// it alone when the device goes; a device that comes back is linked anew from here.
/// Threads: one controlling thread; samples arrive on the thread of the device's own connection.
/// A class derived from it calls close() in its destructor.
class DeviceCapture : private PipeWireGraph::Observer {
public:
    /// On the connection's thread.
    using Sink = std::function<void(CaptureSample)>;

    DeviceCapture(CaptureDevice device, const char* threadName);
    virtual ~DeviceCapture();
    DeviceCapture(const DeviceCapture&) = delete;
    DeviceCapture& operator=(const DeviceCapture&) = delete;

    const CaptureDevice& device() const { return m_device; }

    /// Finds the device and learns what it delivers. Blocks for two seconds at most.
    Result<void, CaptureDeviceError> open();

    /// After open(). `sink` is called until stop() returns.
    void start(Sink sink);
    void stop();

    /// Why nothing comes from a running device. Any thread.
    std::optional<CaptureDeviceError> interruption() const;

protected:
    using ErrorKind = CaptureDeviceError::Kind;

    /// Parameters of the device's node: what it can deliver, and what it delivers now.
    struct Parameters {
        std::vector<PodCopy> enumerated;
        PodCopy current; ///< Null while it delivers nothing to anyone.
    };

    /// How a stream is to be made.
    struct StreamPlan {
        pw_properties* properties = nullptr; ///< Taken over.
        std::vector<PodCopy> formats;        ///< Most wanted first.
    };

    /// Ends the thread; nothing virtual is called any more.
    void close();

    // On the connection's thread:

    /// Whether a device with these parameters can be used; called at every coming of the device.
    virtual bool describe(const Parameters& parameters) = 0;
    /// The device's parameters are other ones now.
    virtual void parametersChanged(const Parameters& parameters) = 0;
    virtual StreamPlan plan() = 0;
    /// The format that was agreed upon; false when it is none to be read.
    virtual bool formatAgreed(pw_stream& stream, const spa_pod& format) = 0;
    /// Whether buffers that wait behind another are left out: a machine that can't keep up
    /// then reads fewer of them instead of older and older ones.
    virtual bool onlyNewestCounts() const = 0;
    /// A buffer that came; null when there is nothing to tell of it.
    virtual std::optional<CaptureSample> read(pw_stream& stream, const spa_buffer& buffer) = 0;

private:
    struct Callbacks;

    void nodeAdded(const PipeWireNode& node) override;
    void nodeRemoved(const PipeWireNode& node) override;
    void synced(int sequence) override;
    void connectionLost() override;

    void follow(const PipeWireNode& node);
    void forget();
    void openStream();
    void closeStream();
    void takeParameter(std::uint32_t id, std::uint32_t index, const spa_pod& pod);
    void deliver(pw_buffer& buffer);
    void watch();
    void setInterruption(std::optional<ErrorKind> kind);

    CaptureDevice m_device;
    PipeWireGraph m_graph;
    spa_source* m_watch = nullptr; ///< A timer that looks whether samples come.

    // All below: changed on the connection's thread, read by others with its lock.
    bool m_isClosed = false; ///< Follows no device any more.
    std::uint32_t m_nodeId = 0;
    std::string m_serial;
    pw_proxy* m_node = nullptr; ///< Null while the device is not there.
    spa_hook m_nodeHook{};
    Parameters m_parameters;
    int m_describeSync = -1; ///< Its answer follows on the node's parameters.
    bool m_isDescribed = false;
    bool m_isUsable = false;
    Sink m_sink; ///< Empty while it does not run.
    pw_stream* m_stream = nullptr;
    spa_hook m_streamHook{};
    std::int64_t m_lastSample = 0; ///< Host nanoseconds; of the stream's start before the first.

    std::atomic<bool> m_isStopping = false;

    mutable std::mutex m_mutex;
    std::optional<CaptureDeviceError> m_interruption; ///< By the mutex.
};

/// The host clock (CLOCK_MONOTONIC) in nanoseconds.
std::int64_t hostNanoseconds();

} // namespace tavi
