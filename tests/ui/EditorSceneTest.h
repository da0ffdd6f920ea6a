#pragma once

#include "Scene.h"
#include "TestEditor.h"

#include <QCoreApplication>
#include <QQmlContext>
#include <QQuickItem>
#include <QTest>
#include <gtest/gtest.h>

namespace tavi::test {

/// The editor's screen in a window that gets keys and clicks.
class EditorSceneTest : public testing::Test {
protected:
    /// `name` is a scene's, as "editor-film".
    explicit EditorSceneTest(const QString& name)
        : m_scene(sceneFiles().filter(QStringLiteral("/%1.qml").arg(name)).value(0)) {}

    TestEditor& testEditor() {
        return *m_scene.window()
                    .rootContext()
                    ->contextProperty(QStringLiteral("testEditor"))
                    .value<TestEditor*>();
    }
    EditorScreenViewModel& screen() {
        return *qobject_cast<EditorScreenViewModel*>(testEditor().screen());
    }
    EditorViewModel& editor() { return *screen().editor(); }
    QQuickItem* focus() { return m_scene.window().activeFocusItem(); }

    void key(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(&m_scene.window(), key, modifiers);
        QCoreApplication::processEvents();
    }

    /// Goes on with Tab until the focused item suits.
    template<typename Suits>
    QQuickItem* tabTo(const Suits& suits) {
        for (int i = 0; i < 100; ++i) {
            key(Qt::Key_Tab);
            if (focus() && suits(*focus())) {
                return focus();
            }
        }
        ADD_FAILURE() << "Tab never came there";
        return nullptr;
    }

    /// The first item that can be seen and suits; null without one.
    template<typename Suits>
    QQuickItem* find(const Suits& suits) {
        QQuickItem* found = nullptr;
        m_scene.visit([&](QQuickItem& item) { found = found || !suits(item) ? found : &item; });
        return found;
    }

    template<typename Suits>
    void click(const Suits& suits) {
        QQuickItem* item = find(suits);
        ASSERT_TRUE(item);
        const QPointF middle = item->mapToScene(QPointF(item->width() / 2, item->height() / 2));
        QTest::mouseClick(&m_scene.window(), Qt::LeftButton, {}, middle.toPoint());
        m_scene.settle();
    }

    Scene m_scene;
};

inline auto hasText(const char* text) {
    return [=](const QQuickItem& item) { return item.property("text").toString() == text; };
}

inline auto hasName(const char* name) {
    return [=](const QQuickItem& item) { return item.property("name").toString() == name; };
}

inline auto isA(const char* type) {
    return [=](const QQuickItem& item) { return item.inherits(type); };
}

} // namespace tavi::test
