#include "platform/pipewire/PipeWireTestServer.h"

#include "support/Sockets.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <fstream>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>

namespace tavi::test {

namespace {

constexpr const char* kPlace = "PIPEWIRE_RUNTIME_DIR";

void end(pid_t& pid) {
    if (pid > 0) {
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, 0);
        pid = 0;
    }
}

/// Keeps the session manager from Bluetooth, which asks systemd-logind for
/// seats: where that is not running WirePlumber gives up altogether. Told
/// twice, in Lua for releases before 0.5 and in the later form.
void leaveOutBluetooth(const std::filesystem::path& configHome) {
    const auto lua = configHome / "wireplumber/bluetooth.lua.d";
    const auto fragments = configHome / "wireplumber/wireplumber.conf.d";
    std::filesystem::create_directories(lua);
    std::filesystem::create_directories(fragments);
    std::ofstream(lua / "60-no-bluetooth.lua") << "bluez_monitor.enabled = false\n";
    std::ofstream(fragments / "60-no-bluetooth.conf")
        << "wireplumber.profiles = { main = { hardware.bluetooth = disabled "
           "support.logind = disabled } }\n";
}

} // namespace

bool waitFor(const std::function<bool()>& condition, double seconds) {
    const auto end = std::chrono::steady_clock::now() + std::chrono::duration<double>(seconds);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > end) {
            return false;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

PipeWireTestServer::PipeWireTestServer() {
    setenv(kPlace, m_folder.path().c_str(), 1);
    leaveOutBluetooth(m_folder.path());
    start();
}

PipeWireTestServer::~PipeWireTestServer() {
    die();
    unsetenv(kPlace);
}

void PipeWireTestServer::start() {
    m_bus = launch("dbus-daemon", {"--session", "--nofork", "--nopidfile",
                                   "--address=unix:path=" + (m_folder / "bus").string()});
    EXPECT_TRUE(waitFor([this] { return isListenedTo(m_folder / "bus"); }))
        << "dbus-daemon does not start";
    m_daemon = launch("pipewire");
    EXPECT_TRUE(waitFor([this] { return isListenedTo(m_folder / "pipewire-0"); }))
        << "pipewire does not start";
    startManager();
}

void PipeWireTestServer::startManager() {
    m_manager = launch("wireplumber");
    // The session manager owns the defaults: it is ready when they are there. The client that
    // asks has to come to its end: from one that dies in the middle (of a closed pipe) on, the
    // daemon tells changes of the defaults to nobody.
    EXPECT_TRUE(waitFor([] {
        return std::system("test -n \"$(pw-metadata -n default 2>/dev/null)\"") == 0;
    })) << "wireplumber does not start";
}

void PipeWireTestServer::killManager() {
    end(m_manager);
}

void PipeWireTestServer::die() {
    end(m_daemon);
    killManager();
    end(m_bus);
    std::error_code ignored;
    std::filesystem::remove(m_folder / "bus", ignored);
    std::filesystem::remove(m_folder / "pipewire-0", ignored);
}

void PipeWireTestServer::freeze(bool isFrozen) const {
    kill(m_daemon, isFrozen ? SIGSTOP : SIGCONT);
}

bool PipeWireTestServer::chooseDefaultSource(const std::string& name) {
    const std::string command =
        "pw-metadata -n default 0 default.configured.audio.source '{\"name\":\"" + name +
        "\"}' Spa:String:JSON >/dev/null";
    return std::system(command.c_str()) == 0;
}

pid_t PipeWireTestServer::launch(const char* program, std::vector<std::string> arguments) const {
    arguments.insert(arguments.begin(), program);
    std::vector<char*> raw;
    for (auto& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    const pid_t pid = fork();
    if (pid != 0) {
        return pid;
    }
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    const std::string place = m_folder.path();
    for (const char* variable : {"XDG_RUNTIME_DIR", "HOME", "XDG_CONFIG_HOME", "XDG_STATE_HOME",
                                 "XDG_CACHE_HOME", "XDG_DATA_HOME"}) {
        setenv(variable, place.c_str(), 1);
    }
    const std::string bus = "unix:path=" + place + "/bus";
    setenv("DBUS_SESSION_BUS_ADDRESS", bus.c_str(), 1);
    setenv("DBUS_SYSTEM_BUS_ADDRESS", bus.c_str(), 1);
    const std::string log = place + "/" + program + ".log";
    const int file = open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    dup2(file, STDOUT_FILENO);
    dup2(file, STDERR_FILENO);
    execvp(program, raw.data());
    _exit(127);
}

NoPipeWire::NoPipeWire() {
    setenv(kPlace, m_folder.path().c_str(), 1);
}

NoPipeWire::~NoPipeWire() {
    unsetenv(kPlace);
}

} // namespace tavi::test
