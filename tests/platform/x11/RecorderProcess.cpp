#include "platform/x11/RecorderProcess.h"

#include "support/Eventually.h"

#include <algorithm>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <sys/wait.h>
#include <unistd.h>

namespace tavi::test {

RecorderProcess::RecorderProcess(const std::string& server, std::vector<std::string> arguments,
                                 int messages, std::string program)
    : m_program(std::move(program)),
      m_pid(fork()) {
    if (m_pid == 0) {
        becomeRecorder(server, std::move(arguments), messages);
    }
}

RecorderProcess::~RecorderProcess() {
    if (m_pid > 0) {
        signal(SIGKILL);
        wait();
    }
}

void RecorderProcess::becomeRecorder(const std::string& server, std::vector<std::string> arguments,
                                     int messages) const {
    arguments.insert(arguments.begin(), {m_program, "record"});
    std::vector<char*> raw;
    for (auto& argument : arguments) {
        raw.push_back(argument.data());
    }
    raw.push_back(nullptr);
    setenv("DISPLAY", server.c_str(), 1);
    setenv("TAVI_DOCUMENTS_DIR", m_folder.path().c_str(), 1);
    setenv("XDG_RUNTIME_DIR", m_folder.path().c_str(), 1);
    const bool isCaught = messages >= 0
                              ? dup2(messages, STDERR_FILENO) >= 0
                              : std::freopen((m_folder / "errors").c_str(), "w", stderr) != nullptr;
    if (isCaught && std::freopen((m_folder / "out").c_str(), "w", stdout) != nullptr) {
        execv(m_program.c_str(), raw.data());
    }
    _exit(127);
}

bool RecorderProcess::waitForFirstFrame() {
    // From then on the time counts.
    return eventually([this] { return journal().find("\"duration\":0,") != std::string::npos; }) &&
           eventually([this] {
               const std::string text = journal();
               return std::count(text.begin(), text.end(), '\n') > 1;
           });
}

std::filesystem::path RecorderProcess::take() const {
    std::error_code error;
    const std::filesystem::directory_iterator takes(library(), error);
    return error || takes == std::filesystem::directory_iterator() ? "" : takes->path();
}

std::string RecorderProcess::journal() const {
    const auto folder = take();
    return folder.empty() ? "" : readFile(folder / "recording.journal");
}

void RecorderProcess::signal(int number) const {
    kill(m_pid, number);
}

bool RecorderProcess::waitForClick() const {
    return eventually([this] { return journal().find("leftMouseUp") != std::string::npos; });
}

bool RecorderProcess::stopAfterClick() {
    if (!waitForClick()) {
        return false;
    }
    signal(SIGINT);
    return wait() == 0;
}

int RecorderProcess::wait() {
    int raw = 0;
    waitpid(m_pid, &raw, 0);
    m_pid = 0;
    return WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
}

std::string RecorderProcess::run(const std::string& arguments, int& status) const {
    const auto out = m_folder / "command";
    const std::string folder = "'" + m_folder.path().string() + "' ";
    const std::string command = "TAVI_DOCUMENTS_DIR=" + folder + "XDG_RUNTIME_DIR=" + folder +
                                kProgram + " " + arguments + " >'" + out.string() + "' 2>&1";
    const int raw = std::system(command.c_str());
    status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
    return readFile(out);
}

} // namespace tavi::test
