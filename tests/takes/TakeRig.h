#pragma once

#include "cli/RunTavi.h"
#include "platform/pipewire/FakeDevices.h"
#include "platform/pipewire/PipeWireTestServer.h"
#include "platform/x11/XTestServer.h"
#include "support/TemporaryFolder.h"

#include <filesystem>
#include <future>
#include <string>

namespace tavi::test {

/// A screen, a media service and a home of their own, for the recorder as users start
/// it.
class TakeRig {
public:
    explicit TakeRig(const std::string& screen = "640x480x24") : m_screen(screen) {}

    /// Runs the program and waits for it; arguments quoted for the shell.
    Outcome tavi(const std::string& arguments) const;

    /// The same without waiting: the outcome of a recording.
    std::future<Outcome> record(const std::string& arguments) const;

    /// Waits until `tavi sources` lists it.
    bool isListed(const std::string& device) const;

    /// Waits until a take has a file of that name.
    bool isWriting(const std::string& file) const;

    std::filesystem::path home() const { return m_home.path(); }
    PipeWireTestServer& media() { return m_media; }
    const XTestServer& screen() const { return m_screen; }

private:
    TemporaryFolder m_home;
    PipeWireTestServer m_media;
    XTestServer m_screen;
};

/// The folder that a recording printed. Fails the test where there was none.
std::filesystem::path takeOf(const Outcome& recorded);

} // namespace tavi::test
