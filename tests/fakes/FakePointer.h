#pragma once

#include "capture/Pointer.h"
#include "fakes/CallLog.h"

#include <map>
#include <set>

namespace tavi {

/// A pointer that the test moves and presses.
class FakePointer final : public PointerMonitors, public PointerLocation, public CursorImages {
public:
    /// Monitors are noted ("addMonitor", "removeMonitor").
    explicit FakePointer(CallLog* log = nullptr) : m_log(log != nullptr ? *log : m_ownLog) {}

    std::optional<Token> addGlobalMonitor(PointerEventKind kind,
                                          std::function<void()> handler) override {
        m_log.note("addMonitor");
        installed.push_back(kind);
        if (refused.count(kind) > 0) {
            return std::nullopt;
        }
        monitors[++m_lastToken] = {kind, std::move(handler)};
        return m_lastToken;
    }
    void removeMonitor(Token token) override {
        m_log.note("removeMonitor");
        monitors.erase(token);
    }

    Point query() const override { return location; }
    Point lastKnown() const override { return place.value_or(location); }

    std::optional<SystemCursor> arrowCursor() override { return arrow; }
    std::optional<SystemCursor> currentSystemCursor() override {
        ++cursorLookups;
        return current;
    }

    /// Calls all monitors of the kind.
    void fire(PointerEventKind kind) {
        const auto all = monitors;
        for (const auto& [token, monitor] : all) {
            if (monitor.first == kind) {
                monitor.second();
            }
        }
    }

    std::vector<PointerEventKind> installed; ///< Every kind asked for, in order.
    std::set<PointerEventKind> refused;      ///< Kinds that yield no token.
    std::map<Token, std::pair<PointerEventKind, std::function<void()>>> monitors;
    Point location;
    std::optional<Point> place; ///< Known last; absent: the location.
    std::optional<SystemCursor> arrow;
    std::optional<SystemCursor> current;
    int cursorLookups = 0;

private:
    CallLog m_ownLog;
    CallLog& m_log;
    Token m_lastToken = 0;
};

} // namespace tavi
