#include "platform/x11/ManagedDesktop.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi::test {

ManagedDesktop::ManagedDesktop() {
    m_manager = start({"openbox"});
    EXPECT_TRUE(
        waitFor([&] { return server.run("xprop -root _NET_SUPPORTING_WM_CHECK | grep -q '#'"); }));
}

ManagedDesktop::~ManagedDesktop() {
    for (const pid_t pid : {m_program, m_manager}) {
        if (pid > 0) {
            kill(pid, SIGKILL);
            waitpid(pid, nullptr, 0);
        }
    }
}

std::uint32_t ManagedDesktop::startTerminal() {
    m_program = start({"xterm", "-title", "recorded", "-bg", "#3070B0", "-fg", "#3070B0", "-cr",
                       "#3070B0", "-geometry", "50x16+120+90", "+sb", "-e", "sleep 100"});
    return awaitId("recorded");
}

std::uint32_t ManagedDesktop::awaitId(const std::string& title) const {
    std::uint32_t id = 0;
    EXPECT_TRUE(waitFor([&] {
        id = idOf(title);
        return id != 0;
    }));
    return id;
}

std::uint32_t ManagedDesktop::idOf(const std::string& title) const {
    const auto listed = folder / "sources";
    run("sources", listed);
    std::istringstream lines(readFile(listed));
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("window ") && line.ends_with(title)) {
            return static_cast<std::uint32_t>(std::stoul(line.substr(7)));
        }
    }
    return 0;
}

int ManagedDesktop::run(const std::string& arguments, const std::filesystem::path& out) const {
    const std::string command = "DISPLAY=" + server.name() + " TAVI_DOCUMENTS_DIR='" +
                                folder.path().string() + "' XDG_RUNTIME_DIR='" +
                                folder.path().string() + "' " TAVI_BINARY_DIR "/tavi " + arguments +
                                " >'" + out.string() + "' 2>'" + (folder / "errors").string() + "'";
    const int raw = std::system(command.c_str());
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

pid_t ManagedDesktop::start(std::vector<std::string> arguments) const {
    std::vector<char*> raw;
    for (auto& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    const pid_t pid = fork();
    if (pid == 0) {
        setenv("DISPLAY", server.name().c_str(), 1);
        setenv("HOME", folder.path().c_str(), 1);
        std::freopen("/dev/null", "w", stderr);
        execvp(raw[0], raw.data());
        _exit(127);
    }
    return pid;
}

} // namespace tavi::test
