#pragma once

#include "capture/Pointer.h"

#include <functional>
#include <map>

namespace tavi {

/// Who listens to pointer events: what implementations of PointerMonitors have in common.
/// Thread: main.
class PointerMonitorList {
public:
    using Token = PointerMonitors::Token;

    Token add(PointerEventKind kind, std::function<void()> handler);

    /// False where the token is unknown.
    bool remove(Token token) { return m_monitors.erase(token) > 0; }

    bool isEmpty() const { return m_monitors.empty(); }

    /// Calls the handlers of the kind, which may add and remove monitors.
    void notify(PointerEventKind kind);

private:
    struct Monitor {
        PointerEventKind kind;
        std::function<void()> handler;
    };

    std::map<Token, Monitor> m_monitors;
    Token m_nextToken = 1;
};

} // namespace tavi
