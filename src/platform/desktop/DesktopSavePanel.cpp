#include "platform/desktop/DesktopSavePanel.h"

#include <QDBusArgument>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusObjectPath>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QRandomGenerator>
#include <QStandardPaths>
#include <QUrl>

#include <utility>

namespace tavi {

namespace {

constexpr auto kPortal = "org.freedesktop.portal.Desktop";
constexpr auto kRequest = "org.freedesktop.portal.Request";

std::filesystem::path pathOf(const QString& text) {
    return QFile::encodeName(text).toStdString();
}

QString videosFolder() {
    return QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
}

/// The object that the portal makes for an answer has a name that both sides know beforehand.
QString requestPath(const QDBusConnection& bus, const QString& token) {
    QString sender = bus.baseService().mid(1);
    sender.replace(u'.', u'_');
    return QStringLiteral("/org/freedesktop/portal/desktop/request/%1/%2").arg(sender, token);
}

QDBusMessage saveFile(const QString& proposedName, const QString& token) {
    auto message = QDBusMessage::createMethodCall(
        QLatin1String(kPortal), QStringLiteral("/org/freedesktop/portal/desktop"),
        QStringLiteral("org.freedesktop.portal.FileChooser"), QStringLiteral("SaveFile"));
    const QVariantMap options{
        {QStringLiteral("handle_token"), token},
        {QStringLiteral("modal"), true},
        {QStringLiteral("current_name"), proposedName},
        // A null-terminated array of bytes, as the portal wants folders.
        {QStringLiteral("current_folder"), QFile::encodeName(videosFolder()) + '\0'}};
    message.setArguments({QString(), DesktopSavePanel::tr("Export"), options});
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
    askPortal(m_proposedName);
}

void DesktopSavePanel::askPortal(const QString& proposedName) {
    auto bus = QDBusConnection::sessionBus();
    const QString token = QStringLiteral("tavlin%1").arg(QRandomGenerator::global()->generate());
    m_request = requestPath(bus, token);
    bus.connect(QLatin1String(kPortal), m_request, QLatin1String(kRequest),
                QStringLiteral("Response"), this, SLOT(portalAnswered(uint, QVariantMap)));
    auto* watcher = new QDBusPendingCallWatcher(bus.asyncCall(saveFile(proposedName, token)), this);
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
    finish(isChosen ? std::optional(pathOf(QUrl(uris.first()).toLocalFile())) : std::nullopt);
}

void DesktopSavePanel::askQt(const QString& proposedName) {
    m_dialog = new QFileDialog(nullptr, tr("Export"), videosFolder());
    m_dialog->setAttribute(Qt::WA_DeleteOnClose);
    m_dialog->setAcceptMode(QFileDialog::AcceptSave);
    m_dialog->setFileMode(QFileDialog::AnyFile);
    m_dialog->setDefaultSuffix(QFileInfo(proposedName).suffix());
    m_dialog->selectFile(proposedName);
    connect(m_dialog, &QFileDialog::finished, this, [this](int result) {
        const QStringList files = m_dialog->selectedFiles();
        const bool isChosen = result == QDialog::Accepted && !files.isEmpty();
        finish(isChosen ? std::optional(pathOf(files.first())) : std::nullopt);
    });
    m_dialog->open();
}

void DesktopSavePanel::finish(const std::optional<std::filesystem::path>& file) {
    QDBusConnection::sessionBus().disconnect(QLatin1String(kPortal), m_request,
                                             QLatin1String(kRequest), QStringLiteral("Response"),
                                             this, SLOT(portalAnswered(uint, QVariantMap)));
    if (const auto answer = std::exchange(m_answer, nullptr)) {
        answer(file);
    }
}

} // namespace tavi
