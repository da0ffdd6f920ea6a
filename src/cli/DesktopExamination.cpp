#include "cli/DesktopExamination.h"

#include "base/DesktopSession.h"
#include "capture/HelperPath.h"
#include "capture/PosixHelperLauncher.h"
#include "platform/portal/DesktopServices.h"
#include "platform/portal/DesktopWakeLocks.h"
#include "platform/portal/ScreenCastSession.h"
#include "platform/x11/X11Compositor.h"
#include "platform/x11/X11ShareableContent.h"

#include <QEventLoop>
#include <QTimer>

#include <chrono>
#include <future>
#include <mutex>
#include <unistd.h>

namespace tavi::cli {

namespace {

/// How long the helper may take to say that it listens, and the desktop to stay awake.
constexpr std::chrono::seconds kPatience{3};

void examineSession(DesktopSupport& found) {
    found.desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString();
    if (!isWaylandSession()) {
        found.session = X11ShareableContent().content() ? DesktopSupport::Session::x11
                                                        : DesktopSupport::Session::none;
        return;
    }
    found.session = DesktopSupport::Session::wayland;
    found.seesClicks = false;
    PortalBus bus;
    if (const auto facts = readScreenCastFacts(bus)) {
        found.portalVersion = facts->version;
        found.castsDisplays = facts->canShow(ScreenCastFacts::monitor);
        found.castsWindows = facts->canShow(ScreenCastFacts::window);
        found.cursorMode = facts->cursorMode();
    }
}

/// Whether the helper says that it listens.
bool hears(const HelperCommand& helper) {
    std::promise<void> said;
    std::once_flag once;
    PosixHelperLauncher launcher;
    const auto process = launcher.launch(helper, [&](std::string_view chunk) {
        if (chunk.find(kHelperReadyMark) != std::string_view::npos) {
            std::call_once(once, [&said] { said.set_value(); });
        }
    });
    return process && said.get_future().wait_for(kPatience) == std::future_status::ready;
}

void examineKeys(DesktopSupport& found) {
    const auto path = helperExecutablePath(runningExecutableFolder());
    found.hasHelper = path && access(path->c_str(), X_OK) == 0;
    found.isHelperListening = found.hasHelper && hears({*path, helperArguments(!found.seesClicks)});
    found.inputAccess = inputAccessAdvice();
}

DesktopSupport::Tray examineTray() {
    const auto session = QDBusConnection::sessionBus();
    const bool hasOldTray = !isWaylandSession() && hasX11Tray();
    if (hasOldTray || hasStatusItemHost(session)) {
        return DesktopSupport::Tray::item;
    }
    return hasNotificationButtons(session) ? DesktopSupport::Tray::notification
                                           : DesktopSupport::Tray::none;
}

DesktopSupport::Awake examineSleep() {
    QEventLoop loop;
    WakeService keeper = WakeService::nobody;
    DesktopWakeLocks locks;
    const auto lock = locks.acquire("Looking whether this works", [&](WakeService service) {
        keeper = service;
        loop.quit();
    });
    QTimer::singleShot(kPatience, &loop, &QEventLoop::quit);
    loop.exec();
    switch (keeper) {
    case WakeService::portal:
    case WakeService::screenSaver:
        return DesktopSupport::Awake::desktop;
    case WakeService::logind:
        return DesktopSupport::Awake::system;
    case WakeService::nobody:
        break;
    }
    return DesktopSupport::Awake::nobody;
}

} // namespace

DesktopSupport examineDesktop() {
    DesktopSupport found;
    examineSession(found);
    if (found.session != DesktopSupport::Session::none) {
        examineKeys(found);
        found.tray = examineTray();
        found.awake = examineSleep();
    }
    return found;
}

} // namespace tavi::cli
