#pragma once

#include "platform/x11/XTestServer.h"
#include "support/PrivateBus.h"
#include "support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QProcess>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavi::test {

/// A desktop of its own: an X server with a window manager, a session bus and private folders, and
/// the application in it.
class DesktopSession {
public:
    DesktopSession();
    ~DesktopSession();

    QDBusConnection bus() const { return m_bus; }

    /// Runs the application until it shows its window.
    void startApplication();
    QProcess& application() { return m_application; }

    /// Runs a program of this build to its end; its exit status.
    int run(const QString& program, const QStringList& arguments = {});

    /// Clicks through to a take of the whole display, and waits until it runs.
    void record();

    /// The folders of the takes.
    std::vector<std::filesystem::path> takes() const;
    /// True when a take was completed.
    bool isTakeSaved() const;
    bool isWindowShown() const;

    const TemporaryFolder& folder() const { return m_folder; }

    /// Starts a program of the desktop; the caller ends it.
    void start(QProcess& process, const QString& program, const QStringList& arguments);

    /// Clicks at a place of the screen.
    void clickScreen(int x, int y) const;

private:
    void click(int x, int y) const;
    bool isTakeRunning() const;

    TemporaryFolder m_folder;
    XTestServer m_display{"1200x800x24"};
    QProcess m_busDaemon;
    QProcess m_windowManager;
    QProcess m_application;
    QDBusConnection m_bus{QString()};
};

} // namespace tavi::test
