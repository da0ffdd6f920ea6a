#include "platform/desktop/QtApplicationWindows.h"

#include <QGuiApplication>
#include <QVariant>

#include <algorithm>
#include <array>
#include <string>

namespace tavi {

namespace {

bool isOrdinary(const QWindow* window) {
    return window->type() == Qt::Window && window->transientParent() == nullptr;
}

/// A window's mark under Wayland, where nobody tells whether it is minimized.
constexpr const char* kAway = "tavi_away";

bool isWayland() {
    return QGuiApplication::platformName().startsWith(QLatin1String("wayland"));
}

QList<QWindow*> ordinaryWindows() {
    QList<QWindow*> windows = QGuiApplication::topLevelWindows();
    windows.removeIf([](const QWindow* window) { return !isOrdinary(window); });
    return windows;
}

} // namespace

bool minimizesWindows(std::string_view desktop) {
    constexpr std::array<std::string_view, 8> kTiling{"sway", "Hyprland", "river", "niri",
                                                      "dwl",  "qtile",    "i3",    "wlroots"};
    return !desktop.empty() &&
           std::none_of(kTiling.begin(), kTiling.end(), [desktop](std::string_view name) {
               return desktop.find(name) != std::string_view::npos;
           });
}

void QtApplicationWindows::Window::miniaturize() {
    m_window->setProperty(kAway, isWayland());
    if (isWayland() && !minimizesWindows(qgetenv("XDG_CURRENT_DESKTOP").toStdString())) {
        m_window->hide();
        return;
    }
    // The other states stay, so that a maximized window comes back maximized.
    m_window->setWindowStates(m_window->windowStates() | Qt::WindowMinimized);
}

bool QtApplicationWindows::Window::isMiniaturized() const {
    return m_window->property(kAway).toBool() ||
           m_window->windowStates().testFlag(Qt::WindowMinimized);
}

void QtApplicationWindows::Window::deminiaturize() {
    m_window->setProperty(kAway, {});
    if (isWayland()) {
        m_window->hide();
    }
    m_window->setWindowStates(m_window->windowStates() & ~Qt::WindowMinimized);
    m_window->setVisible(true); // show() would forget that it was maximized
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
