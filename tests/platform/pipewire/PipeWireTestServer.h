#pragma once

#include "support/TemporaryFolder.h"

#include <functional>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// A private PipeWire with its session manager, ended with the object. While it lives, the
/// environment of this process names it; there is at most one.
class PipeWireTestServer {
public:
    PipeWireTestServer();
    ~PipeWireTestServer();
    PipeWireTestServer(const PipeWireTestServer&) = delete;
    PipeWireTestServer& operator=(const PipeWireTestServer&) = delete;

    /// Starts it again after die(), at the same place.
    void start();
    void die();

    /// The session manager alone, which owns all links.
    void startManager();
    void killManager();

    /// Stops the daemon from answering, or lets it answer again.
    void freeze(bool isFrozen) const;

    /// Makes the source of that name the user's choice.
    static bool chooseDefaultSource(const std::string& name);

private:
    pid_t launch(const char* program, std::vector<std::string> arguments = {}) const;

    TemporaryFolder m_folder;
    pid_t m_bus = 0;
    pid_t m_daemon = 0;
    pid_t m_manager = 0;
};

/// Points the environment at a place where no PipeWire runs, while it lives.
class NoPipeWire {
public:
    NoPipeWire();
    ~NoPipeWire();
    NoPipeWire(const NoPipeWire&) = delete;
    NoPipeWire& operator=(const NoPipeWire&) = delete;

private:
    TemporaryFolder m_folder;
};

/// Polls until `condition` holds; false when it doesn't within so many seconds, which a busy
/// machine may need.
bool waitFor(const std::function<bool()>& condition, double seconds = 60);

} // namespace tavi::test
