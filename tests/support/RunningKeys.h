#pragma once

#include "capture/PosixHelperLauncher.h"
#include "project/KeyLineJson.h"
#include "project/PointerLineJson.h"
#include "support/Eventually.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <map>
#include <mutex>
#include <optional>
#include <sstream>
#include <string>
#include <thread>
#include <vector>

namespace tavi::test {

inline const std::string kHelper = std::string(TAVI_BINARY_DIR) + "/TaviKeys";

constexpr unsigned kShift = 0x20000;
constexpr unsigned kControl = 0x40000;
constexpr unsigned kOption = 0x80000;
constexpr unsigned kCommand = 0x100000;

/// What a key line says, as its "c", a space and its "m".
inline std::string line(const std::string& character, unsigned modifiers) {
    return character + " " + std::to_string(modifiers);
}

using Variables = std::map<std::string, std::string>;

/// Variables of the environment, "" for one that isn't there, while this lives.
class Environment {
public:
    explicit Environment(const Variables& variables) {
        for (const auto& [name, value] : variables) {
            const char* before = std::getenv(name.c_str());
            m_before[name] = before != nullptr ? before : "";
            set(name, value);
        }
    }
    ~Environment() {
        for (const auto& [name, value] : m_before) {
            set(name, value);
        }
    }
    Environment(const Environment&) = delete;
    Environment& operator=(const Environment&) = delete;

private:
    static void set(const std::string& name, const std::string& value) {
        value.empty() ? unsetenv(name.c_str()) : setenv(name.c_str(), value.c_str(), 1);
    }

    Variables m_before;
};

/// The helper, and what it printed so far.
class RunningKeys {
public:
    explicit RunningKeys(const Variables& environment, const HelperCommand& command = {kHelper}) {
        const Environment changed(environment);
        m_process = m_launcher.launch(command, [this](std::string_view chunk) {
            const std::lock_guard lock(m_mutex);
            m_text += chunk;
        });
        EXPECT_TRUE(m_process) << command.path;
    }

    std::string text() const {
        const std::lock_guard lock(m_mutex);
        return m_text;
    }

    /// Each key line as line() makes it.
    std::vector<std::string> keys() const {
        std::istringstream lines(text());
        std::vector<std::string> found;
        for (std::string one; std::getline(lines, one);) {
            if (const auto key = parseKeyLine(one)) {
                found.push_back(line(key->character, key->modifiers.value_or(99)));
            }
        }
        return found;
    }

    /// Each pointer line, in order.
    std::vector<PointerLine> clicks() const {
        std::istringstream lines(text());
        std::vector<PointerLine> found;
        for (std::string one; std::getline(lines, one);) {
            if (const auto click = parsePointerLine(one)) {
                found.push_back(*click);
            }
        }
        return found;
    }

    bool isReady() const {
        return eventually([this] { return text().find("\"ready\"") != std::string::npos; });
    }
    bool hasKeys(std::size_t count) const {
        return eventually([this, count] { return keys().size() >= count; });
    }
    bool hasClicks(std::size_t count) const {
        return eventually([this, count] { return clicks().size() >= count; });
    }
    pid_t pid() const { return m_process->pid(); }
    bool isAlive() const { return kill(m_process->pid(), 0) == 0; }

    /// Waits until it has nothing to do: until it neither runs nor was woken for so long.
    bool rests(std::chrono::milliseconds time = std::chrono::milliseconds(200)) const {
        return eventually([this, time] {
            const std::string before = status("voluntary_ctxt_switches:");
            std::this_thread::sleep_for(time);
            return status("State:").find('S') != std::string::npos &&
                   status("voluntary_ctxt_switches:") == before;
        });
    }

private:
    /// What the kernel tells of it under a name.
    std::string status(const std::string& name) const {
        std::ifstream file("/proc/" + std::to_string(m_process->pid()) + "/status");
        for (std::string one; std::getline(file, one);) {
            if (one.rfind(name, 0) == 0) {
                return one.substr(name.size());
            }
        }
        return "";
    }

    mutable std::mutex m_mutex;
    std::string m_text;
    PosixHelperLauncher m_launcher;
    std::unique_ptr<HelperProcess> m_process;
};

} // namespace tavi::test
