#pragma once

#include "platform/x11/XTestServer.h"
#include "support/TemporaryFolder.h"

#include <cstdint>
#include <string>
#include <vector>

namespace tavi::test {

/// A desktop with a window manager, and a library of its own.
class ManagedDesktop {
public:
    ManagedDesktop();
    ~ManagedDesktop();
    ManagedDesktop(const ManagedDesktop&) = delete;
    ManagedDesktop& operator=(const ManagedDesktop&) = delete;

    /// A terminal with a plain background, 0x3070B0: a program that paints only when it is asked
    /// to. Its window's id.
    std::uint32_t startTerminal();

    /// What `tavi sources` says of the window with the title; 0 where there is none.
    std::uint32_t idOf(const std::string& title) const;

    /// The same, waiting for it.
    std::uint32_t awaitId(const std::string& title) const;

    /// Runs tavi; its exit status.
    int run(const std::string& arguments, const std::filesystem::path& out) const;

    const XTestServer server{"800x600x24"};
    const TemporaryFolder folder;

private:
    pid_t start(std::vector<std::string> arguments) const;

    pid_t m_manager = 0;
    pid_t m_program = 0;
};

} // namespace tavi::test
