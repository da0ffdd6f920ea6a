#include "editor/KeyMonitorQuickItem.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QQuickWindow>

namespace tavi {

KeyMonitorQuickItem::KeyMonitorQuickItem(QQuickItem* parent) : QQuickItem(parent) {}

void KeyMonitorQuickItem::itemChange(ItemChange change, const ItemChangeData& data) {
    if (change == ItemSceneChange) {
        if (m_window) {
            m_window->removeEventFilter(this);
        }
        m_window = data.window;
        if (m_window) {
            m_window->installEventFilter(this);
        }
    }
    QQuickItem::itemChange(change, data);
}

bool KeyMonitorQuickItem::eventFilter(QObject*, QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
        return keyPressed(static_cast<const QKeyEvent&>(*event));
    case QEvent::KeyRelease:
        return keyReleased(static_cast<const QKeyEvent&>(*event));
    case QEvent::MouseButtonPress:
        endTyping(static_cast<const QMouseEvent&>(*event).position());
        return false;
    default:
        return false;
    }
}

/// The focus is on the screen, or nowhere; what lies over a screen takes it away.
bool KeyMonitorQuickItem::isListening() const {
    const QQuickItem* focus = m_window->activeFocusItem();
    return isVisible() && m_editor && parentItem() &&
           (!focus || focus == m_window->contentItem() || focus == parentItem() ||
            parentItem()->isAncestorOf(focus) || focus->isAncestorOf(parentItem()));
}

bool KeyMonitorQuickItem::isTyping() const {
    const QQuickItem* focus = m_window->activeFocusItem();
    return focus && focus->flags().testFlag(ItemAcceptsInputMethod);
}

bool KeyMonitorQuickItem::isLeft(int key) const {
    return m_leavesArrows && (key == Qt::Key_Left || key == Qt::Key_Right || key == Qt::Key_Escape);
}

bool KeyMonitorQuickItem::keyPressed(const QKeyEvent& event) {
    const bool isTaken = isListening() && !isTyping() && !isLeft(event.key()) &&
                         m_editor->handleKey(event.key(), static_cast<int>(event.modifiers()));
    if (isTaken) {
        m_taken.insert(event.key());
    }
    return isTaken;
}

/// A button would take the release alone for a click.
bool KeyMonitorQuickItem::keyReleased(const QKeyEvent& event) {
    if (event.isAutoRepeat()) {
        return m_taken.contains(event.key());
    }
    return m_taken.erase(event.key()) > 0;
}

void KeyMonitorQuickItem::endTyping(const QPointF& place) {
    QQuickItem* field = m_window->activeFocusItem();
    if (isListening() && isTyping() && !field->contains(field->mapFromScene(place))) {
        field->setFocus(false, Qt::MouseFocusReason);
    }
}

} // namespace tavi
