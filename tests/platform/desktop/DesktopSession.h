#pragma once

#include "platform/x11/XTestServer.h"
#include "support/TemporaryFolder.h"

#include <QDBusConnection>
#include <QDBusVirtualObject>
#include <QProcess>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace tavi::test {

/// A service of a desktop, on the session's bus: notes the calls and answers them.
class FakeDesktopService final : public QDBusVirtualObject {
public:
    using Answer = std::function<QVariantList(const QDBusMessage&)>;

    /// `introspection` tells the interfaces at `path`.
    FakeDesktopService(QDBusConnection bus, const QString& name, const QString& path,
                       QString introspection, Answer answer);
    ~FakeDesktopService() override;

    QString introspect(const QString&) const override { return m_introspection; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override;

    /// The last call of a method; of no type where none came.
    QDBusMessage lastCall(const QString& method) const;

private:
    QDBusConnection m_bus;
    QString m_name;
    QString m_path;
    QString m_introspection;
    Answer m_answer;
    std::vector<QDBusMessage> m_calls;
};

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

private:
    void start(QProcess& process, const QString& program, const QStringList& arguments);
    void click(int x, int y) const;
    bool isTakeRunning() const;

    TemporaryFolder m_folder;
    XTestServer m_display{"1200x800x24"};
    QProcess m_busDaemon;
    QProcess m_windowManager;
    QProcess m_application;
    QDBusConnection m_bus{QString()};
};

/// Runs the main loop until `condition` holds; false after a minute without.
bool waitPatiently(const std::function<bool()>& condition);

} // namespace tavi::test
