#include "platform/desktop/DesktopWorkspace.h"

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusPendingCallWatcher>
#include <QDesktopServices>
#include <QFile>
#include <QProcess>
#include <QStandardPaths>
#include <QUrl>

#include <string_view>
#include <utility>

namespace tavi {

namespace {

constexpr std::string_view kSettingsScheme = "x-apple.systempreferences:";

QUrl fileUrl(const std::filesystem::path& path) {
    return QUrl::fromLocalFile(QFile::decodeName(QByteArray::fromStdString(path.string())));
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != std::string::npos;
}

} // namespace

std::optional<SettingsTarget> settingsTarget(const std::string& url, const std::string& desktop,
                                             bool isWayland) {
    if (!url.starts_with(kSettingsScheme)) {
        return std::nullopt;
    }
    if (url.ends_with("Privacy_ListenEvent")) {
        return SettingsTarget{{}, {}, "input-monitoring.html"}; // no desktop has a page for it
    }
    SettingsTarget target{{}, {}, "screen-recording.html"};
    if (isWayland && contains(desktop, "GNOME")) {
        target.program = "gnome-control-center";
        target.argument = "applications";
    } else if (isWayland && contains(desktop, "KDE")) {
        target.program = "systemsettings";
        target.argument = "kcm_app-permissions";
    }
    return target;
}

DesktopWorkspace::DesktopWorkspace(std::filesystem::path helpFolder)
    : m_helpFolder(std::move(helpFolder)) {}

void DesktopWorkspace::openUrl(const std::string& url) {
    const bool isWayland = qEnvironmentVariableIsSet("WAYLAND_DISPLAY");
    const auto desktop = qEnvironmentVariable("XDG_CURRENT_DESKTOP").toStdString();
    if (const auto target = settingsTarget(url, desktop, isWayland)) {
        openSettings(*target);
    } else {
        QDesktopServices::openUrl(QUrl(QString::fromStdString(url)));
    }
}

void DesktopWorkspace::openSettings(const SettingsTarget& target) const {
    const QString program =
        target.program.empty()
            ? QString()
            : QStandardPaths::findExecutable(QString::fromStdString(target.program));
    if (program.isEmpty() ||
        !QProcess::startDetached(program, {QString::fromStdString(target.argument)})) {
        QDesktopServices::openUrl(fileUrl(m_helpFolder / target.helpPage));
    }
}

void DesktopWorkspace::reveal(const std::filesystem::path& path) {
    auto call = QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("/org/freedesktop/FileManager1"),
                                               QStringLiteral("org.freedesktop.FileManager1"),
                                               QStringLiteral("ShowItems"));
    call.setArguments({QStringList{fileUrl(path).toString(QUrl::FullyEncoded)}, QString()});
    auto* watcher = new QDBusPendingCallWatcher(QDBusConnection::sessionBus().asyncCall(call));
    QObject::connect(watcher, &QDBusPendingCallWatcher::finished,
                     [path](QDBusPendingCallWatcher* answer) {
                         if (answer->isError()) {
                             QDesktopServices::openUrl(fileUrl(path.parent_path()));
                         }
                         answer->deleteLater();
                     });
}

} // namespace tavi
