#include "platform/pipewire/DeviceCapture.h"

#include <array>
#include <ctime>
#include <spa/param/param.h>

namespace tavi {

namespace {

/// A device that sends nothing for so long is told of: longer than a camera takes to start and
/// than a microphone's change of format.
constexpr std::int64_t kSilence = 3'000'000'000; // nanoseconds

} // namespace

std::int64_t hostNanoseconds() {
    timespec t{};
    clock_gettime(CLOCK_MONOTONIC, &t);
    return static_cast<std::int64_t>(t.tv_sec) * MediaTime::kNanoseconds + t.tv_nsec;
}

/// What the library calls: from C, with the capture as data.
struct DeviceCapture::Callbacks {
    static DeviceCapture& of(void* data) { return *static_cast<DeviceCapture*>(data); }

    static void nodeParameter(void* data, int, std::uint32_t id, std::uint32_t index, std::uint32_t,
                              const spa_pod* pod) {
        if (pod != nullptr) {
            of(data).takeParameter(id, index, *pod);
        }
    }

    static void streamState(void* data, pw_stream_state, pw_stream_state state, const char*) {
        auto& capture = of(data);
        if (state == PW_STREAM_STATE_ERROR && capture.m_node != nullptr) {
            capture.setInterruption(ErrorKind::refused);
        }
    }

    static void streamParameter(void* data, std::uint32_t id, const spa_pod* pod) {
        auto& capture = of(data);
        if (id != SPA_PARAM_Format || pod == nullptr) {
            return;
        }
        if (!capture.formatAgreed(*capture.m_stream, *pod)) {
            capture.setInterruption(ErrorKind::unsupportedFormat);
        }
    }

    static void process(void* data) {
        auto& capture = of(data);
        pw_stream* const stream = capture.m_stream;
        const bool isNewestOnly = capture.onlyNewestCounts();
        while (pw_buffer* buffer = pw_stream_dequeue_buffer(stream)) {
            while (pw_buffer* newer = isNewestOnly ? pw_stream_dequeue_buffer(stream) : nullptr) {
                pw_stream_queue_buffer(stream, buffer);
                buffer = newer;
            }
            if (!capture.m_isStopping) {
                capture.deliver(*buffer);
            }
            pw_stream_queue_buffer(stream, buffer);
            if (isNewestOnly) {
                return; // for what came meanwhile there is another call
            }
        }
    }

    static void watch(void* data, std::uint64_t) { of(data).watch(); }

    static constexpr pw_node_events kNode{.version = PW_VERSION_NODE_EVENTS,
                                          .param = nodeParameter};
    static constexpr pw_stream_events kStream{.version = PW_VERSION_STREAM_EVENTS,
                                              .state_changed = streamState,
                                              .param_changed = streamParameter,
                                              .process = process};
};

DeviceCapture::DeviceCapture(CaptureDevice device, const char* threadName)
    : m_device(std::move(device)),
      m_graph(threadName, *this) {
    m_watch = pw_loop_add_timer(m_graph.loop(), Callbacks::watch, this);
}

DeviceCapture::~DeviceCapture() {
    close();
    pw_loop_destroy_source(m_graph.loop(), m_watch);
}

void DeviceCapture::close() {
    m_graph.perform([this] {
        m_isClosed = true;
        forget();
    });
    m_graph.stop();
}

Result<void, CaptureDeviceError> DeviceCapture::open() {
    const auto failure = [this](ErrorKind kind) {
        return fail(CaptureDeviceError{kind, m_device.name});
    };
    if (!m_graph.connect()) {
        return failure(ErrorKind::noService);
    }
    const PipeWireGraph::Lock lock(m_graph);
    if (m_node == nullptr) {
        return failure(m_graph.isReady() ? ErrorKind::gone : ErrorKind::noService);
    }
    const bool isAnswered =
        m_graph.waitUntil([this] { return m_isDescribed || m_node == nullptr; });
    if (m_node == nullptr) {
        return failure(ErrorKind::gone);
    }
    if (!isAnswered) {
        return failure(ErrorKind::noService);
    }
    if (!m_isUsable) {
        return failure(ErrorKind::unsupportedFormat);
    }
    return {};
}

void DeviceCapture::start(Sink sink) {
    m_graph.perform([this, &sink] {
        m_sink = std::move(sink);
        timespec second{1, 0};
        pw_loop_update_timer(m_graph.loop(), m_watch, &second, &second, false);
        if (m_isUsable) {
            openStream();
        } else if (m_node == nullptr) {
            setInterruption(m_graph.isReady() ? ErrorKind::gone : ErrorKind::noService);
        } else if (m_isDescribed) {
            setInterruption(ErrorKind::unsupportedFormat);
        }
    });
}

void DeviceCapture::stop() {
    m_isStopping = true; // a thread that can't keep up would read all that waits before
    m_graph.perform([this] {
        pw_loop_update_timer(m_graph.loop(), m_watch, nullptr, nullptr, false);
        closeStream();
        m_sink = nullptr;
        setInterruption(std::nullopt);
    });
    m_isStopping = false;
}

std::optional<CaptureDeviceError> DeviceCapture::interruption() const {
    const std::lock_guard lock(m_mutex);
    return m_interruption;
}

void DeviceCapture::setInterruption(std::optional<ErrorKind> kind) {
    const std::lock_guard lock(m_mutex);
    m_interruption.reset();
    if (kind && m_sink) {
        m_interruption = CaptureDeviceError{*kind, m_device.name};
    }
}

void DeviceCapture::nodeAdded(const PipeWireNode& node) {
    if (node.name == m_device.id && !m_isClosed) {
        forget(); // the daemon may announce the new one before it tells of the old one's end
        follow(node);
    }
}

void DeviceCapture::nodeRemoved(const PipeWireNode& node) {
    if (m_node != nullptr && node.id == m_nodeId) {
        forget();
        setInterruption(ErrorKind::gone);
    }
}

void DeviceCapture::connectionLost() {
    forget();
    setInterruption(ErrorKind::noService);
}

void DeviceCapture::follow(const PipeWireNode& node) {
    m_node = static_cast<pw_proxy*>(
        pw_registry_bind(m_graph.registry(), node.id, PW_TYPE_INTERFACE_Node, PW_VERSION_NODE, 0));
    if (m_node == nullptr) {
        return;
    }
    m_nodeId = node.id;
    m_serial = node.serial;
    m_nodeHook = {};
    auto* proxy = reinterpret_cast<pw_node*>(m_node);
    pw_node_add_listener(proxy, &m_nodeHook, &Callbacks::kNode, this);
    std::array<std::uint32_t, 2> wanted{SPA_PARAM_EnumFormat, SPA_PARAM_Format};
    pw_node_subscribe_params(proxy, wanted.data(), wanted.size());
    m_describeSync = m_graph.sync();
}

void DeviceCapture::forget() {
    closeStream();
    if (m_node != nullptr) {
        spa_hook_remove(&m_nodeHook);
        pw_proxy_destroy(m_node);
        m_node = nullptr;
    }
    m_parameters = {};
    m_describeSync = -1;
    m_isDescribed = false;
    m_isUsable = false;
}

void DeviceCapture::takeParameter(std::uint32_t id, std::uint32_t index, const spa_pod& pod) {
    if (id == SPA_PARAM_Format) {
        m_parameters.current = copyPod(pod);
    } else if (id == SPA_PARAM_EnumFormat) {
        if (index == 0) {
            m_parameters.enumerated.clear();
        }
        m_parameters.enumerated.push_back(copyPod(pod));
    }
    if (m_isDescribed) {
        parametersChanged(m_parameters);
    }
}

void DeviceCapture::synced(int sequence) {
    if (sequence != m_describeSync) {
        return;
    }
    m_isDescribed = true;
    m_isUsable = describe(m_parameters);
    if (!m_sink) {
        return;
    }
    if (m_isUsable) {
        openStream();
    } else {
        setInterruption(ErrorKind::unsupportedFormat);
    }
}

void DeviceCapture::openStream() {
    StreamPlan made = plan();
    pw_properties_set(made.properties, PW_KEY_TARGET_OBJECT, m_serial.c_str());
    // The session manager would link the stream to another device, even to what the loudspeakers
    // play, when this one goes.
    pw_properties_set(made.properties, PW_KEY_NODE_DONT_RECONNECT, "true");
    pw_properties_set(made.properties, "node.dont-fallback", "true");
    m_stream = pw_stream_new(m_graph.core(), "Tavlin", made.properties);
    if (m_stream == nullptr) {
        setInterruption(ErrorKind::refused);
        return;
    }
    m_streamHook = {};
    pw_stream_add_listener(m_stream, &m_streamHook, &Callbacks::kStream, this);
    std::vector<const spa_pod*> formats;
    for (const auto& format : made.formats) {
        formats.push_back(format.get());
    }
    m_lastSample = hostNanoseconds();
    const auto flags = static_cast<pw_stream_flags>(
        PW_STREAM_FLAG_AUTOCONNECT | PW_STREAM_FLAG_MAP_BUFFERS | PW_STREAM_FLAG_DONT_RECONNECT);
    if (pw_stream_connect(m_stream, PW_DIRECTION_INPUT, PW_ID_ANY, flags, formats.data(),
                          static_cast<std::uint32_t>(formats.size())) < 0) {
        setInterruption(ErrorKind::refused);
    }
}

void DeviceCapture::closeStream() {
    if (m_stream == nullptr) {
        return;
    }
    m_graph.closeStream(*m_stream, m_streamHook);
    m_stream = nullptr;
}

void DeviceCapture::deliver(pw_buffer& buffer) {
    if (buffer.buffer == nullptr || buffer.buffer->n_datas == 0) {
        return;
    }
    auto sample = read(*m_stream, *buffer.buffer);
    if (!sample) {
        return;
    }
    m_lastSample = hostNanoseconds();
    setInterruption(std::nullopt);
    m_sink(std::move(*sample));
}

void DeviceCapture::watch() {
    if (m_stream == nullptr || hostNanoseconds() - m_lastSample <= kSilence) {
        return;
    }
    const pw_stream_state state = pw_stream_get_state(m_stream, nullptr);
    if (state == PW_STREAM_STATE_STREAMING) {
        setInterruption(ErrorKind::silent); // and linked: it waits for a slow device
        return;
    }
    if (state != PW_STREAM_STATE_ERROR) {
        setInterruption(ErrorKind::unconnected);
    }
    closeStream();
    openStream();
}

} // namespace tavi
