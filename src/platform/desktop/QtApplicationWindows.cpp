#include "platform/desktop/QtApplicationWindows.h"

#include <QGuiApplication>

namespace tavi {

namespace {

bool isOrdinary(const QWindow* window) {
    return window->type() == Qt::Window && window->transientParent() == nullptr;
}

QList<QWindow*> ordinaryWindows() {
    QList<QWindow*> windows = QGuiApplication::topLevelWindows();
    windows.removeIf([](const QWindow* window) { return !isOrdinary(window); });
    return windows;
}

} // namespace

void QtApplicationWindows::Window::miniaturize() {
    // The other states stay, so that a maximized window comes back maximized.
    m_window->setWindowStates(m_window->windowStates() | Qt::WindowMinimized);
}

bool QtApplicationWindows::Window::isMiniaturized() const {
    return m_window->windowStates().testFlag(Qt::WindowMinimized);
}

void QtApplicationWindows::Window::deminiaturize() {
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
}

ApplicationWindow* QtApplicationWindows::add(QWindow* window) {
    return m_handles.emplace_back(std::make_unique<Window>(window)).get();
}

ApplicationWindow* QtApplicationWindows::keyWindow() {
    m_handles.clear();
    QWindow* window = QGuiApplication::focusWindow();
    return window != nullptr && isOrdinary(window) ? add(window) : nullptr;
}

std::vector<ApplicationWindow*> QtApplicationWindows::windows() {
    m_handles.clear();
    std::vector<ApplicationWindow*> handles;
    for (QWindow* window : ordinaryWindows()) {
        handles.push_back(add(window));
    }
    return handles;
}

void QtApplicationWindows::activateIgnoringOtherApps() {
    for (QWindow* window : ordinaryWindows()) {
        window->raise();
        window->requestActivate();
    }
}

} // namespace tavi
