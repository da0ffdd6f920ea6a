#pragma once

#include "support/TemporaryFolder.h"

#include <array>
#include <cstdio>
#include <string>
#include <sys/wait.h>

namespace tavi::test {

/// What a finished program left.
struct Outcome {
    int status = -1; ///< Exit status; -1 when a signal ended it.
    std::string out;
    std::string err;
};

/// Runs a shell command and waits for it.
inline Outcome runShell(const std::string& command) {
    const TemporaryFolder folder;
    const std::string redirected =
        "( " + command + " ) >" + (folder / "out").string() + " 2>" + (folder / "err").string();
    const int raw = std::system(redirected.c_str());
    return {WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFile(folder / "out"),
            readFile(folder / "err")};
}

inline std::string tavi() {
    return TAVI_BINARY_DIR "/tavi";
}

/// Runs tavi with the given arguments, already quoted for the shell.
inline Outcome runTavi(const std::string& arguments) {
    return runShell(tavi() + " " + arguments);
}

/// Makes a take of two seconds, 320x180, with the ffmpeg command line.
inline void makeTake(const std::filesystem::path& folder) {
    std::filesystem::create_directories(folder);
    const Outcome made = runShell("ffmpeg -nostdin -v error -y -f lavfi -i "
                                  "testsrc2=size=320x180:rate=30:duration=2 -c:v libx264 "
                                  "-preset ultrafast -pix_fmt yuv420p '" +
                                  (folder / "video.mov").string() + "'");
    if (made.status != 0) {
        std::fprintf(stderr, "%s\n", made.err.c_str());
        std::abort();
    }
}

} // namespace tavi::test
