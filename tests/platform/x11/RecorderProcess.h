#pragma once

#include "support/TemporaryFolder.h"

#include <filesystem>
#include <string>
#include <sys/types.h>
#include <vector>

namespace tavi::test {

/// `tavi record` on a server's display, in a process of its own and with a library of its own.
/// Killed with the object.
class RecorderProcess {
public:
    /// `server` is the name of a display; `arguments` follow "record". Messages go to the
    /// descriptor `messages`, to a file of its own where that is negative. `program` is a `tavi`
    /// beside a key helper of its own.
    explicit RecorderProcess(const std::string& server, std::vector<std::string> arguments = {},
                             int messages = -1, std::string program = kProgram);
    ~RecorderProcess();
    RecorderProcess(const RecorderProcess&) = delete;
    RecorderProcess& operator=(const RecorderProcess&) = delete;

    /// Waits for the first frame of its take; false when none comes.
    bool waitForFirstFrame();

    /// The folder of its take; empty before there is one.
    std::filesystem::path take() const;

    /// The journal of its take as it is now.
    std::string journal() const;

    void signal(int number) const;

    /// Waits until it has logged that a button was let go. Where the pointer is, it asks when it
    /// hears of an event: whoever moves the pointer on waits for this.
    bool waitForClick() const;

    /// Ends the take after that; false where that fails.
    bool stopAfterClick();

    /// Waits for its end; the exit status, -1 after a signal.
    int wait();

    /// What it printed: its results, and its messages.
    std::string out() const { return readFile(m_folder / "out"); }
    std::string errors() const { return readFile(m_folder / "errors"); }

    /// Runs another tavi command on the same library; what it printed. Its status goes to `status`.
    std::string run(const std::string& arguments, int& status) const;

    std::filesystem::path library() const { return m_folder / "Tavlin"; }

    static constexpr const char* kProgram = TAVI_BINARY_DIR "/tavi";

private:
    [[noreturn]] void becomeRecorder(const std::string& server, std::vector<std::string> arguments,
                                     int messages) const;

    const TemporaryFolder m_folder;
    const std::string m_program;
    pid_t m_pid = 0;
};

} // namespace tavi::test
