#pragma once

#include "app/NotificationItem.h"
#include "app/UserDefaults.h"
#include "app/Workspace.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <set>
#include <string>
#include <vector>

namespace tavi {

/// The news of the running version, and whether the user has seen them.
///
/// An item belongs to the version that it names, exactly; other versions have no news.
/// Thread: main.
class NotificationViewModel : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasUnread READ hasUnread NOTIFY hasUnreadChanged)
    /// Of each: id, version, title, body, url.
    Q_PROPERTY(QVariantList currentNotifications READ rows CONSTANT)

public:
    static constexpr const char* readIDsKey = "readNotificationIDs";

    /// Both ports outlive it.
    NotificationViewModel(const std::vector<NotificationItem>& items, const std::string& version,
                          UserDefaults& defaults, Workspace& workspace, QObject* parent = nullptr);

    bool hasUnread() const { return m_hasUnread; }
    const std::vector<NotificationItem>& currentNotifications() const { return m_current; }
    QVariantList rows() const;

    /// The user looks at the news.
    Q_INVOKABLE void markAsRead();

    /// Opens an item's page in the browser.
    Q_INVOKABLE void open(const QString& url);

signals:
    void hasUnreadChanged();

private:
    std::set<std::string> readIDs() const;
    void setHasUnread(bool hasUnread);

    UserDefaults& m_defaults;
    Workspace& m_workspace;
    std::vector<NotificationItem> m_current;
    bool m_hasUnread = false;
};

} // namespace tavi
