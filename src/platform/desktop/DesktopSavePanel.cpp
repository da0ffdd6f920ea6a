#include "platform/desktop/DesktopSavePanel.h"

#include "app/PathText.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusMetaType>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QGuiApplication>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QUrl>
#include <QWindow>

#include <utility>

/// A filter of the portal: its name, and its patterns, each behind its kind.
struct PortalPattern {
    uint kind = 0; ///< 0: of names.
    QString pattern;
};
struct PortalFilter {
    QString name;
    QList<PortalPattern> patterns;
};

Q_DECLARE_METATYPE(PortalPattern)
Q_DECLARE_METATYPE(PortalFilter)

QDBusArgument& operator<<(QDBusArgument& out, const PortalPattern& pattern) {
    out.beginStructure();
    out << pattern.kind << pattern.pattern;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, PortalPattern& pattern) {
    in.beginStructure();
    in >> pattern.kind >> pattern.pattern;
    in.endStructure();
    return in;
}

QDBusArgument& operator<<(QDBusArgument& out, const PortalFilter& filter) {
    out.beginStructure();
    out << filter.name << filter.patterns;
    out.endStructure();
    return out;
}

const QDBusArgument& operator>>(const QDBusArgument& in, PortalFilter& filter) {
    in.beginStructure();
    in >> filter.name >> filter.patterns;
    in.endStructure();
    return in;
}

namespace tavi {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kRequest = "org.freedesktop.portal.Request";

QString videosFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
}

/// The window that the panel belongs to; null where none is shown.
QWindow* parentWindow() {
    if (QWindow* focused = QGuiApplication::focusWindow()) {
        return focused;
    }
    for (QWindow* window : QGuiApplication::topLevelWindows()) {
        if (window->isVisible()) {
            return window;
        }
    }
    return nullptr;
}

/// The same in the portal's words; empty where there are none: under Wayland a window has a name
/// only for those that it is told.
QString parentName() {
    const QWindow* window = parentWindow();
    const bool isX11 = QGuiApplication::platformName() == QLatin1String("xcb");
    return window && isX11 ? QStringLiteral("x11:%1").arg(window->winId(), 0, 16) : QString();
}

/// What is chosen has the extension that was proposed, unless that would be a file over which
/// nobody was asked.
std::filesystem::path withExtension(std::filesystem::path file, const QString& proposedName) {
    const std::filesystem::path wanted =
        pathOf(QStringLiteral(".") + QFileInfo(proposedName).suffix());
    std::filesystem::path longer = file;
    longer += wanted;
    std::error_code error;
    const bool isFree = !std::filesystem::exists(longer, error) && !error;
    return file.extension() != wanted && isFree ? longer : file;
}

QList<PortalFilter> portalFilters(const QString& proposedName) {
    const QString suffix = QFileInfo(proposedName).suffix();
    return {{suffix.toUpper(), {{0, QStringLiteral("*.") + suffix}}}};
}

void registerFilters() {
    static const bool isDone = [] {
        qDBusRegisterMetaType<PortalPattern>();
        qDBusRegisterMetaType<QList<PortalPattern>>();
        qDBusRegisterMetaType<PortalFilter>();
        qDBusRegisterMetaType<QList<PortalFilter>>();
        return true;
    }();
    Q_UNUSED(isDone)
}

/// The object that the portal makes for an answer has a name that both sides know beforehand.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

QDBusMessage saveFile(const QString& proposedName, const QString& folder, const QString& token) {
    registerFilters();
    auto message = QDBusMessage::createMethodCall(
        QLatin1String(kPortal), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.FileChooser"), QStringLiteral("SaveFile"));
    const QVariantMap options{
        {QStringLiteral("handle_token"), token},
        {QStringLiteral("modal"), true},
        {QStringLiteral("current_name"), proposedName},
        {QStringLiteral("filters"), QVariant::fromValue(portalFilters(proposedName))},
        // A null-terminated array of bytes, as the portal wants folders.
        {QStringLiteral("current_folder"), QFile::encodeName(folder) + '\0'}};
    message.setArguments({parentName(), DesktopSavePanel::tr("Export"), options});
    return message;
}

} // namespace

DesktopSavePanel::~DesktopSavePanel() {
    delete m_dialog;
}

void DesktopSavePanel::chooseFile(const std::string& proposedName, Answer answer) {
    if (m_answer) {
        answer(std::nullopt);
        return;
    }
    m_answer = std::move(answer);
    m_proposedName = QString::fromStdString(proposedName);
    if (m_folder.isEmpty() || !QFileInfo(m_folder).isDir()) {
        m_folder = videosFolder();
    }
    askPortal(m_proposedName);
}

void DesktopSavePanel::askPortal(const QString& proposedName) {
    auto bus = QDBusConnection::sessionBus();
    const QString token = QStringLiteral("tavlin%1").arg(QRandomGenerator::global()->generate());
    m_request = requestPath(bus, token);
    bus.connect(QLatin1String(kPortal), m_request, QLatin1String(kRequest),
                QStringLiteral("Response"), this, SLOT(portalAnswered(uint, QVariantMap)));
    auto* watcher =
        new QDBusPendingCallWatcher(bus.asyncCall(saveFile(proposedName, m_folder, token)), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](auto* reply) {
        if (reply->isError() && m_answer) {
            askQt(m_proposedName);
        }
        reply->deleteLater();
    });
}

void DesktopSavePanel::portalAnswered(uint response, const QVariantMap& results) {
    constexpr uint kChosen = 0;
    const QStringList uris = results.value(QStringLiteral("uris")).toStringList();
    const bool isChosen = response == kChosen && !uris.isEmpty();
    finish(isChosen ? std::optional(
                          withExtension(pathOf(QUrl(uris.first()).toLocalFile()), m_proposedName))
                    : std::nullopt);
}

void DesktopSavePanel::askQt(const QString& proposedName) {
    m_dialog = new QFileDialog(nullptr, tr("Export"), m_folder);
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setAcceptMode(QFileDialog::AcceptSave);
    m_dialog->setFileMode(QFileDialog::AnyFile);
    const QString suffix = QFileInfo(proposedName).suffix();
    m_dialog->setDefaultSuffix(suffix);
    m_dialog->setNameFilter(QStringLiteral("%1 (*.%2)").arg(suffix.toUpper(), suffix));
    m_dialog->selectFile(proposedName);
    connect(m_dialog, &QFileDialog::finished, this, [this](int result) {
        const QStringList files = m_dialog->selectedFiles();
        const bool isChosen = result == QDialog::Accepted && !files.isEmpty();
        finish(isChosen ? std::optional(pathOf(files.first())) : std::nullopt);
    });
    m_dialog->winId(); // makes the window, which else is made too late to belong to another
    m_dialog->windowHandle()->setTransientParent(parentWindow());
    m_dialog->open();
}

void DesktopSavePanel::finish(const std::optional<std::filesystem::path>& file) {
    QDBusConnection::sessionBus().disconnect(QLatin1String(kPortal), m_request,
                                             QLatin1String(kRequest), QStringLiteral("Response"),
                                             this, SLOT(portalAnswered(uint, QVariantMap)));
    if (file) {
        m_folder = QFileInfo(QFile::decodeName(file->c_str())).path();
    }
    if (const auto answer = std::exchange(m_answer, nullptr)) {
        answer(file);
    }
}

} // namespace tavi
