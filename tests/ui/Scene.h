#pragma once

#include <QQuickView>
#include <QString>
#include <QStringList>

#include <functional>
#include <memory>

namespace tavi::test {

/// The pictures of the program: one QML file each, named after the picture.
QStringList sceneFiles();

/// One scene in a window of its own, at rest.
///
/// A scene is a screen over made-up view models; its size is the window's.
class Scene {
public:
    explicit Scene(const QString& file);
    ~Scene();

    QQuickView& window() { return *m_view; }

    /// What QML had to complain about while it was made and shown.
    const QStringList& warnings() const { return m_warnings; }

    /// The picture of the window.
    QImage picture();

    /// Runs the loop until nothing was drawn for a while.
    void settle();

    /// Every item of the window that can be seen, popups included, in drawing order.
    void visit(const std::function<void(QQuickItem&)>& visitor);

private:
    QStringList m_warnings;
    std::unique_ptr<QQuickView> m_view;
};

/// What a program that shows scenes does first: typefaces, a still text cursor.
void prepareScenes();

} // namespace tavi::test
