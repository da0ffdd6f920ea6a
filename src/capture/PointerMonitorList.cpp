#include "capture/PointerMonitorList.h"

#include <utility>
#include <vector>

namespace tavi {

PointerMonitorList::Token PointerMonitorList::add(PointerEventKind kind,
                                                  std::function<void()> handler) {
    const Token token = m_nextToken++;
    m_monitors.emplace(token, Monitor{kind, std::move(handler)});
    return token;
}

void PointerMonitorList::notify(PointerEventKind kind) {
    std::vector<Token> tokens;
    for (const auto& [token, monitor] : m_monitors) {
        if (monitor.kind == kind) {
            tokens.push_back(token);
        }
    }
    for (const Token token : tokens) {
        if (const auto found = m_monitors.find(token); found != m_monitors.end()) {
            const auto handler = found->second.handler;
            handler();
        }
    }
}

} // namespace tavi
