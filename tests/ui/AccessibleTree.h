#pragma once

#include "support/PrivateBus.h"

#include <QDBusConnection>
#include <QProcess>
#include <QRect>
#include <QString>

#include <functional>
#include <memory>
#include <optional>
#include <vector>

namespace tavi::test {

/// What assistive technology knows of a control.
struct AccessibleItem {
    QString name;
    QString role; ///< "push button", "slider", …
    QRect area;   ///< Of its window, from the upper left corner.
    quint64 states = 0;

    bool isChecked() const;
    bool isFocused() const;
    QPoint middle() const { return area.center(); }
};

/// A session whose user works with a screen reader: a bus with one program on it, and what
/// assistive technology finds in that.
class AccessibleTree {
public:
    /// `folder` holds the bus's socket.
    explicit AccessibleTree(const QString& folder);
    ~AccessibleTree();

    /// The session's bus.
    const QString& address() const { return m_address; }

    /// What is shown now under such a name, in the program's order: the one with that number, from
    /// 0. An empty role is any.
    std::optional<AccessibleItem> find(const std::function<bool(const QString&)>& suits,
                                       const QString& role = {}, int number = 0) const;

private:
    using Path = std::pair<QString, QString>; ///< Program and object.

    struct Search {
        const std::function<bool(const QString&)>& suits;
        QString role;
        int number = 0; ///< Of those still to come that suit.
        QPoint origin;  ///< Of the window, on the screen.
    };

    std::optional<Path> root() const;
    std::optional<AccessibleItem> findBelow(const Path& path, Search& search) const;
    QString nameOf(const Path& path) const;
    quint64 statesOf(const Path& path) const;
    QRect areaOf(const Path& path) const;
    std::vector<Path> childrenOf(const Path& path) const;
    QVariantList call(const Path& path, const char* interface, const char* method,
                      const QVariantList& arguments = {}) const;

    QString m_address;
    QProcess m_daemon;
    QDBusConnection m_bus{QString()};
    std::unique_ptr<FakeDesktopService> m_service; ///< Tells that there is a screen reader.
};

} // namespace tavi::test
