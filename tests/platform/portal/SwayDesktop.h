#pragma once

#include "platform/portal/PrivateDesktop.h"

namespace tavi::test {

/// A desktop of wlroots without a screen, and its portal, which asks nobody: one monitor, and a
/// terminal that fills it.
class SwayDesktop : public PrivateDesktop {
public:
    static constexpr int kWidth = 1280;
    static constexpr int kHeight = 720;
    static constexpr std::uint32_t kColour = 0x2050A0; ///< Of the terminal, 0xRRGGBB.

    SwayDesktop();

    /// Turns the monitor; "90" and so on. The desktop is then as wide as it was high.
    void turnMonitor(const std::string& transform);

private:
    bool hasTerminal() const;

    std::string m_control; ///< The socket that takes commands.
};

} // namespace tavi::test
