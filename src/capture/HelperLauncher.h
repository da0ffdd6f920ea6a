#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace tavi {

/// Marks a line by which the key helper says that it can listen.
inline constexpr std::string_view kHelperReadyMark = "\"ready\"";

/// Has the key helper print clicks and scrolling too (PointerLineJson.h).
inline constexpr const char* kHelperPointerOption = "--pointer-buttons";

/// A helper program and what it is told.
struct HelperCommand {
    std::string path;
    std::vector<std::string> arguments; ///< Without the program's own name.

    // A path alone is a command.
    HelperCommand(std::string program, std::vector<std::string> options = {})
        : path(std::move(program)),
          arguments(std::move(options)) {}

    bool operator==(const HelperCommand&) const = default;
};

/// What the key helper of a take is told.
inline std::vector<std::string> helperArguments(bool isPointerWanted) {
    return isPointerWanted ? std::vector<std::string>{kHelperPointerOption}
                           : std::vector<std::string>();
}

/// A helper program that runs and whose standard output is being read.
///
/// The destructor stops it: no chunk arrives after it, the pipe is closed, and
/// the process gets signal 15.
class HelperProcess {
public:
    virtual ~HelperProcess() = default;

    virtual pid_t pid() const = 0;
};

/// Starts helper programs.
class HelperLauncher {
public:
    /// Gets what one read of the pipe gave, never empty, on a background thread.
    using ChunkHandler = std::function<void(std::string_view chunk)>;

    virtual ~HelperLauncher() = default;

    /// Runs the program with this process's environment, standard input and
    /// standard error. Null when there is no pipe or it can't be started.
    virtual std::unique_ptr<HelperProcess> launch(const HelperCommand& command,
                                                  ChunkHandler onChunk) = 0;
};

/// What is known of the permission to see keys, as a take sees it. Main thread.
class KeyPermission {
public:
    /// Ends the wait when destroyed.
    class Wait {
    public:
        virtual ~Wait() = default;
    };

    virtual ~KeyPermission() = default;

    /// A helper said that it can listen.
    virtual void setGranted() = 0;

    /// Calls `block` once, at the next change to granted; a grant of before doesn't count.
    virtual std::unique_ptr<Wait> whenGranted(std::function<void()> block) = 0;

    /// Stops the helper that only probes, so that one copy listens.
    virtual void stopProbe() = 0;
};

} // namespace tavi
