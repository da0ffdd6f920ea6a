#include "platform/desktop/TrayStatusItems.h"

#include "platform/desktop/NotificationItemStandIn.h"

#include <QAction>
#include <QCoreApplication>
#include <QMenu>
#include <QSystemTrayIcon>

#include <utility>

namespace tavi {

namespace {

QString text(const std::string& utf8) {
    return QString::fromStdString(utf8).trimmed();
}

class TrayItem final : public StatusItem {
public:
    TrayItem(const StatusItemLook& look, QIcon icon, std::function<void()> onClick)
        : m_name(text(look.accessibilityText)),
          m_icon(new QSystemTrayIcon(std::move(icon))) {
        QAction* stop =
            m_menu.addAction(QCoreApplication::translate("StatusItem", "Stop Recording"));
        QObject::connect(stop, &QAction::triggered, m_icon, onClick);
        QObject::connect(m_icon, &QSystemTrayIcon::activated, m_icon,
                         [onClick](QSystemTrayIcon::ActivationReason reason) {
                             if (reason == QSystemTrayIcon::Trigger) {
                                 onClick();
                             }
                         });
        m_icon->setContextMenu(&m_menu);
        setTitle(look.title);
        m_icon->show();
    }
    ~TrayItem() override {
        // The click may lead here: the icon goes once its signal has returned.
        m_icon->disconnect();
        m_icon->setContextMenu(nullptr);
        m_icon->hide();
        m_icon->deleteLater();
    }
    TrayItem(const TrayItem&) = delete;
    TrayItem& operator=(const TrayItem&) = delete;

    void setTitle(const std::string& title) override {
        m_icon->setToolTip(m_name + QLatin1Char(' ') + text(title));
    }

private:
    QString m_name;
    QMenu m_menu;
    QSystemTrayIcon* m_icon;
};

} // namespace

std::unique_ptr<StatusItem> TrayStatusItems::makeItem(const StatusItemLook& look,
                                                      std::function<void()> onClick) {
    if (!QSystemTrayIcon::isSystemTrayAvailable()) {
        return std::make_unique<NotificationItemStandIn>(look, std::move(onClick));
    }
    return std::make_unique<TrayItem>(look, m_drawIcon(look.symbolName), std::move(onClick));
}

} // namespace tavi
