#pragma once

#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/portal/FakePortal.h"
#include "support/TemporaryFolder.h"

#include <QString>

#include <map>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// Environment variables as they are to be while the object lives.
class Surroundings {
public:
    explicit Surroundings(const std::map<std::string, std::string>& wanted);
    ~Surroundings();
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;

private:
    std::map<std::string, std::string> m_before;
    std::vector<std::string> m_missing;
};

/// The ground of a Wayland desktop of the test's own: a home, a session bus and PipeWire, which the
/// environment names, and programs that end with the object.
class PrivateDesktop {
protected:
    PrivateDesktop(const std::string& desktopName, const std::string& waylandDisplay);
    ~PrivateDesktop();
    PrivateDesktop(const PrivateDesktop&) = delete;
    PrivateDesktop& operator=(const PrivateDesktop&) = delete;

    enum class User { same, nobody };

    /// Starts a program; its messages go to a file in the folder. `extra` is added to its
    /// environment, an empty value takes a variable away.
    pid_t launch(std::vector<std::string> command,
                 const std::map<std::string, std::string>& extra = {}, User user = User::same);
    void end(pid_t pid);

    /// False when nobody takes the name within a minute.
    static bool waitForService(const QString& name);
    /// False when the portal offers no screen casts within a minute.
    static bool waitForPortal();

    std::string log(const std::string& program) const;

    TemporaryFolder m_folder;
    Surroundings m_surroundings;
    PipeWireTestServer m_server;
    TestBus m_bus;

private:
    std::vector<pid_t> m_children;
};

} // namespace tavi::test
