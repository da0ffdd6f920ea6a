#pragma once

#include "capture/PointerMonitorList.h"
#include "platform/x11/XConnection.h"

#include <QSocketNotifier>

#include <array>
#include <map>
#include <memory>
#include <string>

namespace tavi {

/// Pointer events of the whole desktop by XInput2 raw events, on a connection
/// of its own; they arrive while the Qt loop of the main thread runs.
///
/// A pointer that a program warps gives no event.
/// Threads: main thread.
class X11PointerMonitors final : public PointerMonitors {
public:
    /// `displayName` empty: $DISPLAY.
    static Result<std::unique_ptr<X11PointerMonitors>, CaptureError>
    open(const std::string& displayName = {});

    std::optional<Token> addGlobalMonitor(PointerEventKind kind,
                                          std::function<void()> handler) override;
    void removeMonitor(Token token) override;

private:
    X11PointerMonitors(XConnection x, std::uint8_t extensionOpcode);

    void selectEvents(bool wanted);
    void readMapping();
    void readEvents();
    void handleEvent(const xcb_generic_event_t& event);
    void handlePress(std::uint32_t button);
    void handleRelease(std::uint32_t button);
    void handleMotion(const xcb_ge_generic_event_t& event);
    std::uint32_t logicalButton(std::uint32_t physicalButton) const;

    XConnection m_x;
    std::uint8_t m_extensionOpcode;
    std::array<std::uint8_t, 256> m_mapping{}; ///< Logical button of physical button n + 1.
    bool m_isLeftDown = false;
    PointerMonitorList m_monitors;
    QSocketNotifier m_notifier;
};

} // namespace tavi
