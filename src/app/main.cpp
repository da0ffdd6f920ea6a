#include "app/PathText.h"
#include "app/TaviApp.h"
#include "app/program/LiveSystem.h"
#include "app/program/MemoryReturn.h"
#include "app/program/Translations.h"
#include "base/ProcessMemory.h"
#include "capture/RecorderLock.h"
#include "editor/TimelineQuickItem.h"
#include "platform/desktop/SingleInstance.h"
#include "platform/qt/UnixSignals.h"
#include "ui/QuickSetup.h"

#include <CLI/CLI.hpp>
#include <QApplication>
#include <QIcon>
#include <QQmlComponent>
#include <QQmlEngine>

#include <csignal>
#include <iostream>
#include <memory>
#include <optional>

namespace {

using namespace tavi;

constexpr int kUsageError = 2;

struct Arguments {
    std::optional<std::string> take;
};

void describeProgram(QApplication& application) {
    application.setApplicationName(QStringLiteral("tavlin"));
    application.setApplicationDisplayName(QStringLiteral("Tavlin"));
    application.setApplicationVersion(QStringLiteral(TAVI_VERSION));
    QGuiApplication::setDesktopFileName(QStringLiteral("tavlin"));
    QGuiApplication::setWindowIcon(
        QIcon::fromTheme(QStringLiteral("tavlin"), QIcon(QStringLiteral(":/tavi/logo.svg"))));
}

/// Shows what is already open, and the take on it.
void showFromOutside(TaviApp& app, QtApplicationWindows& windows, const QString& take) {
    if (!take.isEmpty()) {
        app.openTake(pathOf(take));
    }
    // Under X11 the task bar brings back a window that is away for a take. Under Wayland there may
    // be none: who starts the program again wants to see it.
    const bool isAwayForATake = QGuiApplication::platformName() == QLatin1String("xcb") &&
                                app.appViewModel()->statusBarService() != nullptr;
    for (ApplicationWindow* window : windows.windows()) {
        if (window->isMiniaturized() && !isAwayForATake) {
            window->deminiaturize();
        }
    }
    windows.activateIgnoringOtherApps();
}

/// A take that runs is saved when `app` goes.
std::unique_ptr<UnixSignals> handleSignals(TaviApp& app) {
    return std::make_unique<UnixSignals>(
        std::initializer_list<int>{SIGINT, SIGTERM, SIGHUP, SIGUSR1},
        [&app](int signal) { signal == SIGUSR1 ? app.stopTake() : QCoreApplication::quit(); });
}

int show(QApplication& application, SingleInstance& instance, const Arguments& arguments) {
    QQmlEngine engine;
    setUpEngine(engine);
    registerEditorItems();
    LiveSystem system(engine);
    TaviApp app(system.ports(), system.package(), {TAVI_VERSION, TAVI_BUILD}, QLocale());
    const MemoryReturn memoryReturn(app);
    QtApplicationWindows windows;
    QObject::connect(&application, &QGuiApplication::applicationStateChanged,
                     [&app](Qt::ApplicationState state) {
                         if (state == Qt::ApplicationActive) {
                             app.appViewModel()->sceneBecameActive();
                         }
                     });
    QObject::connect(&instance, &SingleInstance::asked,
                     [&](const QString& take) { showFromOutside(app, windows, take); });
    const auto signalHandling = handleSignals(app);
    if (arguments.take) {
        app.appViewModel()->openTake(std::filesystem::absolute(*arguments.take));
    }
    QQmlComponent main(&engine, QUrl(QStringLiteral("qrc:/qt/qml/Tavi/App/Main.qml")));
    const std::unique_ptr<QObject> window(main.createWithInitialProperties(
        {{QStringLiteral("taviApp"), QVariant::fromValue<QObject*>(&app)}}));
    if (!window) {
        std::cerr << "tavlin: " << main.errorString().toStdString() << "\n";
        return 1;
    }
    return QApplication::exec();
}

int start(int argc, char** argv, const Arguments& arguments) {
    QApplication application(argc, argv);
    describeProgram(application);
    const auto folder = RecorderLock::folder();
    if (!folder) {
        std::cerr << "tavlin: " << folder.error().description() << "\n";
        return 1;
    }
    SingleInstance instance(*folder);
    if (!instance.claim()) {
        const bool isTaken = instance.handOver(arguments.take);
        std::cerr << (isTaken ? "" : "tavlin: It runs already and doesn't answer.\n");
        return isTaken ? 0 : 1;
    }
    chooseGraphics();
    setUpFonts();
    const Translations translations(QLocale::system());
    return show(application, instance, arguments);
}

int run(int argc, char** argv) {
    CLI::App options{"Records the screen, zooms where something happens, and makes a film of it."};
    options.name("tavlin");
    options.set_version_flag("--version", "tavlin " TAVI_VERSION " (build " TAVI_BUILD ")");
    Arguments arguments;
    options.add_option("take", arguments.take, "A take's folder, to open it at once")
        ->check(CLI::ExistingDirectory)
        ->type_name("TAKE");
    try {
        options.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return options.exit(error) == 0 ? 0 : kUsageError;
    }
    return start(argc, argv, arguments);
}

} // namespace

/// The desktop application.
int main(int argc, char** argv) {
    tavi::keepLargeBlocksApart();
    try {
        return run(argc, argv);
    } catch (const std::exception& error) {
        std::cerr << "tavlin: " << error.what() << "\n";
        return 1;
    }
}
