#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <pipewire/extensions/metadata.h>
#include <pipewire/pipewire.h>
#include <string>
#include <vector>

namespace tavi {

/// A device or a stream, as the daemon announces it.
struct PipeWireNode {
    std::uint32_t id = 0;
    std::string serial;      ///< Never used twice while the daemon runs.
    std::string name;        ///< The same when the device was plugged in again.
    std::string description; ///< For users; never empty.
    std::string mediaClass;  ///< "Audio/Source", "Video/Source", ...
};

/// A connection to the PipeWire daemon, and the nodes there as they come and go.
///
/// Runs a thread of its own, on which the observer is called with the lock held; that thread
/// sleeps while nothing happens. A daemon that isn't there or went away is asked for again once a
/// second. The environment says which daemon: PIPEWIRE_RUNTIME_DIR, XDG_RUNTIME_DIR,
/// PIPEWIRE_REMOTE.
class PipeWireGraph {
public:
    class Observer {
    public:
        virtual void nodeAdded(const PipeWireNode&) {}
        virtual void nodeRemoved(const PipeWireNode&) {}
        virtual void defaultsChanged() {}
        /// The answer to sync() of that number.
        virtual void synced(int) {}
        /// Everything made with core() and registry() is to be let go, now. Follows on no
        /// nodeRemoved().
        virtual void connectionLost() {}

    protected:
        ~Observer() = default;
    };

    /// Holds the thread off while it lives, to look at what it changes. May be nested.
    class Lock {
    public:
        explicit Lock(const PipeWireGraph& graph) : m_loop(graph.m_loop) {
            pw_thread_loop_lock(m_loop);
        }
        ~Lock() { pw_thread_loop_unlock(m_loop); }
        Lock(const Lock&) = delete;
        Lock& operator=(const Lock&) = delete;

    private:
        pw_thread_loop* m_loop;
    };

    /// How long a daemon may take to answer.
    static constexpr std::chrono::milliseconds kPatience{1500};

    static constexpr int kOwnConnection = -1;

    /// `threadName` is cut to 15 bytes. Nothing runs yet. `observer` outlives the graph or stop().
    /// `remote` is a connection that somebody opened for the graph, which takes the descriptor
    /// over; once it is lost it is lost for good.
    PipeWireGraph(const char* threadName, Observer& observer, int remote = kOwnConnection);
    ~PipeWireGraph();
    PipeWireGraph(const PipeWireGraph&) = delete;
    PipeWireGraph& operator=(const PipeWireGraph&) = delete;

    /// Starts the thread if it isn't running, connects if there is no connection, and waits until
    /// all nodes and defaults are known: false when the daemon does not answer. Not on the
    /// graph's thread, without its lock.
    bool connect();

    /// Closes the connection and ends the thread: the observer is not called any more, and what was
    /// made with core() and registry() must be gone. For good.
    void stop();

    /// Runs `work` on the graph's thread and waits until it is done; at once where there is no
    /// thread, or on it. Not with the lock held.
    ///
    /// Whatever belongs to the daemon is made, changed and let go in this way. The lock is not
    /// enough: the library's data thread leaves calls for a stream with the graph's thread, and a
    /// stream that another thread destroys is still called by those that wait.
    void perform(const std::function<void()>& work);

    /// Ends a capturing stream whose listener `hook` is; nothing of it is called any more when
    /// this returns. On the thread.
    void closeStream(pw_stream& stream, spa_hook& hook) const;

    /// With the lock held: waits until `condition` holds, which is asked after each signal();
    /// false when it didn't within the patience. Not on the graph's thread.
    bool waitUntil(const std::function<bool()>& condition);

    /// All that follows: on the thread; but for what makes or changes something, also with
    /// the lock held.
    void signal() { pw_thread_loop_signal(m_loop, false); }
    pw_loop* loop() const { return pw_thread_loop_get_loop(m_loop); }
    pw_core* core() const { return m_core; }
    pw_registry* registry() const { return m_registry; }
    bool isReady() const { return m_isReady; } ///< Connected, all nodes known.
    const std::map<std::uint32_t, PipeWireNode>& nodes() const { return m_nodes; }
    /// Null when there is none. Of several, the newest.
    const PipeWireNode* nodeNamed(const std::string& name) const;
    /// The name of the node that a default's key ("default.audio.source") stands for; may be empty.
    std::string defaultNode(const std::string& key) const;
    /// Asks the daemon for an answer after all it was asked before; the number of that answer.
    int sync() { return pw_core_sync(m_core, PW_ID_CORE, 0); }

private:
    struct Callbacks;

    struct Work {
        const std::function<void()>* function = nullptr;
        bool isDone = false;
    };

    void runWork();
    void openCore();
    pw_core* newCore();
    void closeCore();
    void retryLater();
    void globalAdded(std::uint32_t id, const char* type, const spa_dict& properties);
    void followMetadata(std::uint32_t id);
    void defaultChanged(const char* key, const char* value);

    Observer& m_observer;
    pw_thread_loop* m_loop;
    pw_context* m_context = nullptr;
    spa_source* m_timer = nullptr; ///< To let go of a dead connection, then to try another one.
    bool m_isRunning = false;      ///< Of the controlling thread.
    const bool m_isLent;           ///< Uses the connection of somebody else.
    int m_remote;                  ///< That connection, until it was used.

    spa_source* m_workEvent = nullptr; ///< Wakes the thread for work.
    std::mutex m_workMutex;
    std::condition_variable m_workDone;
    std::vector<Work*> m_work; ///< By its mutex.

    pw_core* m_core = nullptr;
    pw_registry* m_registry = nullptr;
    pw_proxy* m_metadata = nullptr;
    std::uint32_t m_metadataId = 0;
    spa_hook m_coreHook{};
    spa_hook m_registryHook{};
    spa_hook m_metadataHook{};
    int m_readySync = -1; ///< Its answer ends a step of getting to know everything.
    int m_readySteps = 0;
    bool m_isReady = false;
    bool m_isLost = false;
    std::map<std::uint32_t, PipeWireNode> m_nodes;
    std::map<std::string, std::string> m_defaults; ///< Node names by key.
};

} // namespace tavi
