#include "platform/pipewire/PipeWireDevices.h"

#include "platform/pipewire/PipeWireGraph.h"

#include <algorithm>
#include <atomic>
#include <tuple>

namespace tavi {

namespace {

bool isOfKind(const PipeWireNode& node, CaptureDeviceKind kind) {
    if (node.name.empty()) {
        return false;
    }
    if (kind == CaptureDeviceKind::camera) {
        return node.mediaClass == "Video/Source";
    }
    return node.mediaClass == "Audio/Source" || node.mediaClass == "Audio/Source/Virtual";
}

bool isDevice(const PipeWireNode& node) {
    return isOfKind(node, CaptureDeviceKind::microphone) ||
           isOfKind(node, CaptureDeviceKind::camera);
}

const char* defaultKey(CaptureDeviceKind kind) {
    return kind == CaptureDeviceKind::microphone ? "default.audio.source" : "default.video.source";
}

} // namespace

class PipeWireDevices::Watcher final : private PipeWireGraph::Observer {
public:
    explicit Watcher(Executor& main) : m_main(main), m_graph("pw-devices", *this) {}
    ~Watcher() {
        m_graph.stop();
        *m_state = {};
    }

    Executor& main() { return m_main; }

    bool connect() { return m_graph.connect(); }

    Result<std::vector<CaptureDevice>, CaptureDeviceError> devices(CaptureDeviceKind kind) {
        if (!m_graph.connect()) {
            return fail(CaptureDeviceError{CaptureDeviceError::Kind::noService, ""});
        }
        const PipeWireGraph::Lock lock(m_graph);
        const std::string first = m_graph.defaultNode(defaultKey(kind));
        std::vector<CaptureDevice> found;
        for (const auto& [id, node] : m_graph.nodes()) {
            const auto isSame = [&node](const CaptureDevice& d) { return d.id == node.name; };
            if (isOfKind(node, kind) && std::ranges::none_of(found, isSame)) {
                found.push_back({node.name, node.description, kind});
            }
        }
        std::ranges::sort(found, {}, [&first](const CaptureDevice& device) {
            return std::tuple(device.id != first, device.name, device.id);
        });
        return found;
    }

    void setHandler(std::function<void()> handler) {
        m_state->handler = std::move(handler);
        m_graph.connect(); // or asks again until there is a daemon
    }

private:
    /// Of the main thread, but for the flag.
    struct State {
        std::function<void()> handler;
        std::shared_ptr<std::atomic<bool>> isPosted = std::make_shared<std::atomic<bool>>(false);
    };

    void nodeAdded(const PipeWireNode& node) override {
        if (m_graph.isReady() && isDevice(node)) {
            tell();
        }
    }
    void nodeRemoved(const PipeWireNode& node) override {
        if (isDevice(node)) {
            tell();
        }
    }
    void defaultsChanged() override { tell(); }
    void connectionLost() override { tell(); }

    /// One call stands for all changes until it is made.
    void tell() {
        if (m_isPosted->exchange(true)) {
            return;
        }
        m_main.post([weak = std::weak_ptr<State>(m_state), isPosted = m_isPosted] {
            *isPosted = false;
            const auto state = weak.lock();
            if (state && state->handler) {
                const auto handler = state->handler; // it may set another one
                handler();
            }
        });
    }

    Executor& m_main;
    std::shared_ptr<State> m_state = std::make_shared<State>();
    std::shared_ptr<std::atomic<bool>> m_isPosted = m_state->isPosted;
    PipeWireGraph m_graph;
};

PipeWireDevices::PipeWireDevices(Executor& main) : m_watcher(std::make_unique<Watcher>(main)) {}

PipeWireDevices::~PipeWireDevices() = default;

void PipeWireDevices::requestAccess(CaptureDeviceKind, std::function<void(bool)> handler) {
    const bool isThere = m_watcher->connect();
    m_watcher->main().post([handler = std::move(handler), isThere] { handler(isThere); });
}

Result<std::vector<CaptureDevice>, CaptureDeviceError>
PipeWireDevices::devices(CaptureDeviceKind kind) {
    return m_watcher->devices(kind);
}

void PipeWireDevices::setChangeHandler(std::function<void()> handler) {
    m_watcher->setHandler(std::move(handler));
}

} // namespace tavi
