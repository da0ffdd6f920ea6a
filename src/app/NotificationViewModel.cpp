#include "app/NotificationViewModel.h"

#include <QCoreApplication>

#include <algorithm>
#include <iterator>

namespace tavi {

namespace {

QString translated(const std::string& text) {
    return QCoreApplication::translate("NotificationItem", text.c_str());
}

} // namespace

NotificationViewModel::NotificationViewModel(const std::vector<NotificationItem>& items,
                                             const std::string& version, UserDefaults& defaults,
                                             Workspace& workspace, QObject* parent)
    : QObject(parent),
      m_defaults(defaults),
      m_workspace(workspace) {
    std::copy_if(items.begin(), items.end(), std::back_inserter(m_current),
                 [&version](const NotificationItem& item) { return item.version == version; });
    const auto read = readIDs();
    m_hasUnread =
        std::any_of(m_current.begin(), m_current.end(),
                    [&read](const NotificationItem& item) { return !read.contains(item.id); });
}

std::set<std::string> NotificationViewModel::readIDs() const {
    const auto ids = m_defaults.stringArray(readIDsKey);
    return {ids.begin(), ids.end()};
}

void NotificationViewModel::markAsRead() {
    auto ids = readIDs();
    for (const NotificationItem& item : m_current) {
        ids.insert(item.id);
    }
    m_defaults.setStringArray(readIDsKey, {ids.begin(), ids.end()});
    setHasUnread(false);
}

void NotificationViewModel::setHasUnread(bool hasUnread) {
    if (m_hasUnread != hasUnread) {
        m_hasUnread = hasUnread;
        emit hasUnreadChanged();
    }
}

void NotificationViewModel::open(const QString& url) {
    m_workspace.openUrl(url.toStdString());
}

QVariantList NotificationViewModel::rows() const {
    QVariantList rows;
    for (const NotificationItem& item : m_current) {
        rows.append(QVariantMap{{QStringLiteral("id"), QString::fromStdString(item.id)},
                                {QStringLiteral("version"), QString::fromStdString(item.version)},
                                {QStringLiteral("title"), translated(item.title)},
                                {QStringLiteral("body"), translated(item.body)},
                                {QStringLiteral("url"), QString::fromStdString(item.url)}});
    }
    return rows;
}

} // namespace tavi
