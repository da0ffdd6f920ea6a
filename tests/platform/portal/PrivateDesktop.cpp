#include "platform/portal/PrivateDesktop.h"

#include "platform/portal/ScreenCastSession.h"

#include <QDBusConnection>
#include <QDBusConnectionInterface>
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <grp.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi::test {

namespace {

constexpr double kPatience = 60; // seconds
constexpr uid_t kNobody = 65534;

std::map<std::string, std::string> variables(const std::filesystem::path& folder,
                                             const std::string& desktopName,
                                             const std::string& waylandDisplay) {
    const std::string home = folder / "home";
    const std::string run = folder / "run";
    std::filesystem::create_directories(home + "/.config");
    std::filesystem::create_directories(run);
    chmod(run.c_str(), 0700);
    chmod(folder.c_str(), 0711);
    return {{"HOME", home},
            {"XDG_RUNTIME_DIR", run},
            {"XDG_CONFIG_HOME", home + "/.config"},
            {"XDG_CACHE_HOME", home + "/.cache"},
            {"XDG_DATA_HOME", home + "/.local/share"},
            {"XDG_STATE_HOME", home + "/.local/state"},
            {"XDG_CURRENT_DESKTOP", desktopName},
            {"XDG_SESSION_TYPE", "wayland"},
            {"WAYLAND_DISPLAY", waylandDisplay},
            {"DISPLAY", ""},
            {"GSETTINGS_BACKEND", "memory"},
            {"GIO_USE_VFS", "local"},
            {"NO_AT_BRIDGE", "1"},
            {"LIBGL_ALWAYS_SOFTWARE", "1"}};
}

void set(const std::string& name, const std::string& value) {
    value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
}

} // namespace

Surroundings::Surroundings(const std::map<std::string, std::string>& wanted) {
    for (const auto& [name, value] : wanted) {
        const char* before = std::getenv(name.c_str());
        if (before != nullptr) {
            m_before[name] = before;
        } else {
            m_missing.push_back(name);
        }
        set(name, value);
    }
}

Surroundings::~Surroundings() {
    for (const auto& [name, value] : m_before) {
        setenv(name.c_str(), value.c_str(), 1);
    }
    for (const auto& name : m_missing) {
        unsetenv(name.c_str());
    }
}

PrivateDesktop::PrivateDesktop(const std::string& desktopName, const std::string& waylandDisplay)
    : m_surroundings(variables(m_folder.path(), desktopName, waylandDisplay)) {}

PrivateDesktop::~PrivateDesktop() {
    while (!m_children.empty()) {
        end(m_children.back());
    }
}

pid_t PrivateDesktop::launch(std::vector<std::string> command,
                             const std::map<std::string, std::string>& extra, User user) {
    const std::string name = std::filesystem::path(command[0]).filename();
    const std::string messages = m_folder / (name + ".log");
    std::vector<char*> raw;
    for (auto& word : command) {
        raw.push_back(word.data());
    }
    raw.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        const int file = open(messages.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
        dup2(file, STDOUT_FILENO);
        dup2(file, STDERR_FILENO);
        for (const auto& [variable, value] : extra) {
            set(variable, value);
        }
        if (user == User::nobody && geteuid() == 0 &&
            (setgroups(0, nullptr) != 0 || setgid(kNobody) != 0 || setuid(kNobody) != 0)) {
            _exit(126);
        }
        prctl(PR_SET_PDEATHSIG, SIGKILL); // a change of the user would take it back
        execvp(raw[0], raw.data());
        _exit(127);
    }
    m_children.push_back(pid);
    return pid;
}

void PrivateDesktop::end(pid_t pid) {
    const auto known = std::find(m_children.begin(), m_children.end(), pid);
    if (known != m_children.end()) {
        m_children.erase(known);
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
    }
}

bool PrivateDesktop::waitForService(const QString& name) {
    const QString own = QStringLiteral("wait-for-service");
    auto bus = QDBusConnection::connectToBus(QDBusConnection::SessionBus, own);
    const bool isThere =
        waitFor([&] { return bus.interface()->isServiceRegistered(name).value(); }, kPatience);
    QDBusConnection::disconnectFromBus(own);
    return isThere;
}

bool PrivateDesktop::waitForPortal() {
    PortalBus bus;
    return waitFor([&] { return readScreenCastFacts(bus).has_value(); }, kPatience);
}

std::string PrivateDesktop::log(const std::string& program) const {
    return readFile(m_folder / (program + ".log"));
}

} // namespace tavi::test
