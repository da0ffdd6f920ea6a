#include "app/program/MemoryReturn.h"

#include "base/ProcessMemory.h"

#include <QThreadPool>

#include <chrono>

namespace tavi {

namespace {

/// Players and encoders take this long to end; and who hurries through takes is not held up.
constexpr std::chrono::seconds kDelay{2};

} // namespace

MemoryReturn::MemoryReturn(TaviApp& app) : m_app(app) {
    m_timer.setSingleShot(true);
    m_timer.setInterval(kDelay);
    connect(&m_timer, &QTimer::timeout, this,
            [] { QThreadPool::globalInstance()->start(giveFreeMemoryBack); });
    connect(m_app.appViewModel(), &AppViewModel::currentModeChanged, this, &MemoryReturn::later);
    connect(&m_app, &TaviApp::editorScreenChanged, this, &MemoryReturn::watchExports);
}

/// An export tells its progress more often than the delay, and last that it ended.
void MemoryReturn::watchExports() {
    if (EditorScreenViewModel* screen = m_app.editorScreen()) {
        connect(screen, &EditorScreenViewModel::exportChanged, this, &MemoryReturn::later);
    }
}

} // namespace tavi
