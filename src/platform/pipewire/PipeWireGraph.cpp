#include "platform/pipewire/PipeWireGraph.h"

#include <array>
#include <cerrno>
#include <mutex>
#include <spa/utils/json.h>
#include <spa/utils/result.h>
#include <string_view>
#include <unistd.h>
#include <utility>

namespace tavi {

namespace {

/// Until a daemon that is not there is asked for again.
constexpr long kRetrySeconds = 1;

std::string textOf(const spa_dict& properties, const char* key) {
    const char* value = spa_dict_lookup(&properties, key);
    return value == nullptr ? std::string() : std::string(value);
}

/// The field "name" of a JSON object.
std::string nameInJson(const char* json) {
    spa_json outer{};
    spa_json object{};
    spa_json_init(&outer, json, std::char_traits<char>::length(json));
    if (spa_json_enter_object(&outer, &object) <= 0) {
        return {};
    }
    std::array<char, 256> key{};
    std::array<char, 1024> value{};
    while (spa_json_get_string(&object, key.data(), key.size()) > 0) {
        if (std::string_view(key.data()) == "name") {
            return spa_json_get_string(&object, value.data(), value.size()) > 0
                       ? std::string(value.data())
                       : std::string();
        }
        const char* skipped = nullptr;
        if (spa_json_next(&object, &skipped) <= 0) {
            break;
        }
    }
    return {};
}

} // namespace

/// What the library calls: from C, with the graph as data.
struct PipeWireGraph::Callbacks {
    static PipeWireGraph& of(void* data) { return *static_cast<PipeWireGraph*>(data); }

    static void coreDone(void* data, std::uint32_t id, int sequence) {
        auto& graph = of(data);
        if (id != PW_ID_CORE) {
            return;
        }
        if (sequence != graph.m_readySync) {
            graph.m_observer.synced(sequence);
        } else if (++graph.m_readySteps < 2) {
            graph.m_readySync = graph.sync(); // the defaults were asked for on the way
        } else {
            graph.m_isReady = true;
            graph.m_observer.defaultsChanged();
        }
        graph.signal();
    }

    static void coreError(void* data, std::uint32_t id, int, int result, const char*) {
        auto& graph = of(data);
        if (id == PW_ID_CORE && result == -EPIPE) {
            graph.m_isLost = true;
            graph.m_isReady = false;
            // Not here: the library is still at work with the connection.
            timespec soon{0, 1};
            pw_loop_update_timer(graph.loop(), graph.m_timer, &soon, nullptr, false);
            graph.signal();
        }
    }

    static void global(void* data, std::uint32_t id, std::uint32_t, const char* type, std::uint32_t,
                       const spa_dict* properties) {
        if (properties != nullptr) {
            of(data).globalAdded(id, type, *properties);
        }
    }

    static void globalRemoved(void* data, std::uint32_t id) {
        auto& graph = of(data);
        if (const auto entry = graph.m_nodes.extract(id)) {
            graph.m_observer.nodeRemoved(entry.mapped());
            graph.signal();
        } else if (graph.m_metadata != nullptr && id == graph.m_metadataId) {
            spa_hook_remove(&graph.m_metadataHook);
            pw_proxy_destroy(graph.m_metadata);
            graph.m_metadata = nullptr;
            graph.m_defaults.clear();
            graph.m_observer.defaultsChanged();
        }
    }

    static int metadata(void* data, std::uint32_t subject, const char* key, const char*,
                        const char* value) {
        if (subject == PW_ID_CORE) {
            of(data).defaultChanged(key, value);
        }
        return 0;
    }

    static void timer(void* data, std::uint64_t) {
        auto& graph = of(data);
        if (graph.m_isLost) {
            graph.m_observer.connectionLost();
            graph.closeCore();
        } else {
            graph.openCore();
        }
        if (graph.m_core == nullptr) {
            graph.retryLater();
        }
    }

    static void work(void* data, std::uint64_t) { of(data).runWork(); }

    static constexpr pw_core_events kCore{
        .version = PW_VERSION_CORE_EVENTS, .done = coreDone, .error = coreError};
    static constexpr pw_registry_events kRegistry{
        .version = PW_VERSION_REGISTRY_EVENTS, .global = global, .global_remove = globalRemoved};
    static constexpr pw_metadata_events kMetadata{.version = PW_VERSION_METADATA_EVENTS,
                                                  .property = metadata};
};

PipeWireGraph::PipeWireGraph(const char* threadName, Observer& observer, int remote)
    : m_observer(observer),
      m_isLent(remote >= 0),
      m_remote(remote) {
    static std::once_flag once;
    std::call_once(once, [] { pw_init(nullptr, nullptr); });
    m_loop = pw_thread_loop_new(threadName, nullptr);
    m_context = pw_context_new(loop(), nullptr, 0);
    m_timer = pw_loop_add_timer(loop(), Callbacks::timer, this);
    m_workEvent = pw_loop_add_event(loop(), Callbacks::work, this);
}

PipeWireGraph::~PipeWireGraph() {
    stop();
    pw_loop_destroy_source(loop(), m_workEvent);
    pw_loop_destroy_source(loop(), m_timer);
    if (m_context != nullptr) {
        pw_context_destroy(m_context);
    }
    if (m_remote >= 0) {
        close(m_remote);
    }
    pw_thread_loop_destroy(m_loop);
}

bool PipeWireGraph::connect() {
    if (!m_isRunning) {
        m_isRunning = pw_thread_loop_start(m_loop) == 0;
        if (!m_isRunning) {
            return false;
        }
    }
    perform([this] {
        if (m_core == nullptr) {
            openCore();
        }
        if (m_core == nullptr) {
            retryLater();
        }
    });
    const Lock lock(*this);
    return waitUntil([this] { return m_isReady || m_isLost || m_core == nullptr; }) && m_isReady;
}

void PipeWireGraph::stop() {
    perform([this] {
        pw_loop_update_timer(loop(), m_timer, nullptr, nullptr, false);
        closeCore();
    });
    if (m_isRunning) {
        pw_thread_loop_stop(m_loop);
        m_isRunning = false;
    }
}

void PipeWireGraph::perform(const std::function<void()>& work) {
    if (!m_isRunning || pw_thread_loop_in_thread(m_loop)) {
        work();
        return;
    }
    Work item{&work};
    std::unique_lock lock(m_workMutex);
    m_work.push_back(&item);
    pw_loop_signal_event(loop(), m_workEvent);
    m_workDone.wait(lock, [&item] { return item.isDone; });
}

void PipeWireGraph::runWork() {
    std::vector<Work*> work;
    {
        const std::lock_guard lock(m_workMutex);
        work.swap(m_work);
    }
    for (const Work* item : work) {
        (*item->function)();
    }
    const std::lock_guard lock(m_workMutex);
    for (Work* item : work) {
        item->isDone = true;
    }
    m_workDone.notify_all();
}

void PipeWireGraph::closeStream(pw_stream& stream, spa_hook& hook) const {
    spa_hook_remove(&hook);
    pw_stream_disconnect(&stream);
    // Calls that the library's data thread left here for the stream come before it goes.
    const auto nothing = [](spa_loop*, bool, std::uint32_t, const void*, std::size_t, void*) {
        return 0;
    };
    pw_loop_invoke(loop(), nothing, 0, nullptr, 0, false, nullptr);
    pw_stream_destroy(&stream);
}

bool PipeWireGraph::waitUntil(const std::function<bool()>& condition) {
    timespec end{};
    pw_thread_loop_get_time(m_loop, &end, std::chrono::nanoseconds(kPatience).count());
    while (!condition()) {
        if (pw_thread_loop_timed_wait_full(m_loop, &end) != 0) {
            return condition();
        }
    }
    return true;
}

const PipeWireNode* PipeWireGraph::nodeNamed(const std::string& name) const {
    const PipeWireNode* newest = nullptr;
    for (const auto& [id, node] : m_nodes) {
        if (node.name == name) {
            newest = &node;
        }
    }
    return newest;
}

std::string PipeWireGraph::defaultNode(const std::string& key) const {
    const auto found = m_defaults.find(key);
    return found == m_defaults.end() ? std::string() : found->second;
}

void PipeWireGraph::openCore() {
    if (m_context == nullptr) {
        return;
    }
    m_core = newCore();
    if (m_core == nullptr) {
        return;
    }
    pw_core_add_listener(m_core, &m_coreHook, &Callbacks::kCore, this);
    m_registry = pw_core_get_registry(m_core, PW_VERSION_REGISTRY, 0);
    pw_registry_add_listener(m_registry, &m_registryHook, &Callbacks::kRegistry, this);
    m_readySteps = 0;
    m_readySync = sync();
}

pw_core* PipeWireGraph::newCore() {
    if (m_isLent && m_remote < 0) {
        return nullptr;
    }
    auto* properties =
        pw_properties_new(PW_KEY_APP_NAME, "Tavlin", PW_KEY_APP_ID, "tavlin", nullptr);
    return m_isLent ? pw_context_connect_fd(m_context, std::exchange(m_remote, -1), properties, 0)
                    : pw_context_connect(m_context, properties, 0);
}

void PipeWireGraph::closeCore() {
    m_isLost = false;
    m_isReady = false;
    m_nodes.clear();
    m_defaults.clear();
    if (m_core == nullptr) {
        return;
    }
    if (m_metadata != nullptr) {
        spa_hook_remove(&m_metadataHook);
        pw_proxy_destroy(m_metadata);
    }
    m_metadata = nullptr;
    spa_hook_remove(&m_registryHook);
    pw_proxy_destroy(reinterpret_cast<pw_proxy*>(m_registry));
    m_registry = nullptr;
    spa_hook_remove(&m_coreHook);
    pw_core_disconnect(m_core);
    m_core = nullptr;
}

void PipeWireGraph::retryLater() {
    if (m_isLent) {
        return;
    }
    timespec later{kRetrySeconds, 0};
    pw_loop_update_timer(loop(), m_timer, &later, nullptr, false);
}

void PipeWireGraph::globalAdded(std::uint32_t id, const char* type, const spa_dict& properties) {
    const std::string_view interface = type;
    if (interface == PW_TYPE_INTERFACE_Node) {
        PipeWireNode node{
            id, textOf(properties, PW_KEY_OBJECT_SERIAL), textOf(properties, PW_KEY_NODE_NAME),
            textOf(properties, PW_KEY_NODE_DESCRIPTION), textOf(properties, PW_KEY_MEDIA_CLASS)};
        if (node.description.empty()) {
            node.description = textOf(properties, PW_KEY_NODE_NICK);
        }
        if (node.description.empty()) {
            node.description = node.name;
        }
        const auto& added = m_nodes[id] = std::move(node);
        m_observer.nodeAdded(added);
        signal();
    } else if (interface == PW_TYPE_INTERFACE_Metadata && m_metadata == nullptr &&
               textOf(properties, PW_KEY_METADATA_NAME) == "default") {
        followMetadata(id);
    }
}

void PipeWireGraph::followMetadata(std::uint32_t id) {
    m_metadata = static_cast<pw_proxy*>(
        pw_registry_bind(m_registry, id, PW_TYPE_INTERFACE_Metadata, PW_VERSION_METADATA, 0));
    if (m_metadata == nullptr) {
        return;
    }
    m_metadataId = id;
    m_metadataHook = {};
    pw_metadata_add_listener(reinterpret_cast<pw_metadata*>(m_metadata), &m_metadataHook,
                             &Callbacks::kMetadata, this);
}

void PipeWireGraph::defaultChanged(const char* key, const char* value) {
    if (key == nullptr) {
        m_defaults.clear();
    } else if (value == nullptr) {
        m_defaults.erase(key);
    } else {
        m_defaults[key] = nameInJson(value);
    }
    if (m_isReady) {
        m_observer.defaultsChanged();
    }
}

} // namespace tavi
