#include "platform/desktop/DesktopSession.h"

#include "support/Sockets.h"

#include <QCoreApplication>
#include <gtest/gtest.h>

#include <utility>

namespace tavi::test {

namespace {

// Places in the window of 1120 x 720 points.
constexpr int kNewRecordingX = 1034;
constexpr int kNewRecordingY = 22;
constexpr int kRecordX = 640;
constexpr int kRecordY = 690;

/// Ends a process and waits for it.
void end(QProcess& process) {
    process.terminate();
    if (!process.waitForFinished(5000)) {
        process.kill();
        process.waitForFinished();
    }
}

} // namespace

DesktopSession::DesktopSession() {
    const QString address =
        QStringLiteral("unix:path=%1/bus").arg(QString::fromStdString(m_folder.path().string()));
    std::filesystem::permissions(m_folder.path(), std::filesystem::perms::owner_all);
    start(m_busDaemon, "dbus-daemon",
          {"--session", "--nofork", "--nopidfile", "--address=" + address});
    start(m_windowManager, "openbox", {"--sm-disable"});
    EXPECT_TRUE(waitPatiently([&] { return isListenedTo(m_folder / "bus"); }));
    m_bus = connectPatiently(address, address);
}

DesktopSession::~DesktopSession() {
    end(m_application);
    QDBusConnection::disconnectFromBus(m_bus.name());
    end(m_windowManager);
    end(m_busDaemon);
}

void DesktopSession::start(QProcess& process, const QString& program,
                           const QStringList& arguments) {
    const QString folder = QString::fromStdString(m_folder.path().string());
    auto environment = QProcessEnvironment::systemEnvironment();
    for (const char* name : {"WAYLAND_DISPLAY", "PIPEWIRE_REMOTE", "XDG_CURRENT_DESKTOP"}) {
        environment.remove(QLatin1String(name));
    }
    for (const char* name : {"HOME", "XDG_RUNTIME_DIR", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        environment.insert(QLatin1String(name), folder);
    }
    environment.insert("TAVI_DOCUMENTS_DIR", folder + "/documents");
    environment.insert("DBUS_SESSION_BUS_ADDRESS", "unix:path=" + folder + "/bus");
    environment.insert("DISPLAY", QString::fromStdString(m_display.name()));
    environment.insert("QT_QPA_PLATFORM", "xcb");
    environment.insert("QT_QUICK_BACKEND", "software");
    process.setProcessEnvironment(environment);
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(program, arguments);
    EXPECT_TRUE(process.waitForStarted(30'000)) << program.toStdString();
}

void DesktopSession::startApplication() {
    start(m_application, QStringLiteral(TAVI_BINARY_DIR "/tavlin"), {});
    ASSERT_TRUE(waitPatiently([this] { return isWindowShown(); }));
}

int DesktopSession::run(const QString& program, const QStringList& arguments) {
    QProcess process;
    start(process, QStringLiteral(TAVI_BINARY_DIR "/") + program, arguments);
    EXPECT_TRUE(waitPatiently([&] { return process.state() == QProcess::NotRunning; }));
    return process.exitCode();
}

bool DesktopSession::isWindowShown() const {
    return m_display.run("xdotool search --onlyvisible --name '^Tavlin$'");
}

void DesktopSession::click(int x, int y) const {
    m_display.run("xdotool search --onlyvisible --name '^Tavlin$' mousemove --window %1 " +
                  std::to_string(x) + " " + std::to_string(y) + " click 1");
}

void DesktopSession::clickScreen(int x, int y) const {
    m_display.run("xdotool mousemove " + std::to_string(x) + " " + std::to_string(y) + " click 1");
}

/// The same clicks do nothing on the other screens, so they are simply repeated.
void DesktopSession::record() {
    ASSERT_TRUE(waitPatiently([this] {
        if (!isTakeRunning() && isWindowShown()) {
            click(kNewRecordingX, kNewRecordingY);
            click(kRecordX, kRecordY);
        }
        return isTakeRunning() && !isWindowShown();
    }));
}

std::vector<std::filesystem::path> DesktopSession::takes() const {
    std::error_code error;
    std::vector<std::filesystem::path> folders;
    for (const auto& entry :
         std::filesystem::directory_iterator(m_folder / "documents" / "Tavlin", error)) {
        if (entry.is_directory()) {
            folders.push_back(entry.path());
        }
    }
    return folders;
}

bool DesktopSession::isTakeRunning() const {
    const auto folders = takes();
    return !folders.empty() && std::filesystem::exists(folders.front() / "video.mov");
}

bool DesktopSession::isTakeSaved() const {
    const auto folders = takes();
    return folders.size() == 1 && std::filesystem::exists(folders.front() / "metadata.json");
}

} // namespace tavi::test
