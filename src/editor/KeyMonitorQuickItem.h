#pragma once

#include "editor/EditorViewModel.h"

#include <QQuickItem>

#include <set>

namespace tavi {

/// Hands the keys of the editor's screen, its parent, to the editor before the focused item gets
/// them: Space plays also while a button has the focus. Three kinds of keys go their usual way:
/// those typed into a text field, those of a menu, panel or layer over the screen, and those that
/// the editor has no use for.
///
/// A press of the pointer outside of the text field that is typed into ends the typing before
/// anything else is done with it, so that what was typed counts for the button that is pressed.
/// Thread: main. The editor outlives it.
class KeyMonitorQuickItem : public QQuickItem {
    Q_OBJECT
    QML_NAMED_ELEMENT(KeyMonitor)
    Q_PROPERTY(tavi::EditorViewModel* editor MEMBER m_editor NOTIFY editorChanged)
    /// Left, Right and Escape go to the focused item: it is moved by them.
    Q_PROPERTY(bool leavesArrows MEMBER m_leavesArrows NOTIFY leavesArrowsChanged)

public:
    explicit KeyMonitorQuickItem(QQuickItem* parent = nullptr);

signals:
    void editorChanged();
    void leavesArrowsChanged();

protected:
    void itemChange(ItemChange change, const ItemChangeData& data) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool isListening() const;
    bool isTyping() const;
    bool isLeft(int key) const;
    bool keyPressed(const QKeyEvent& event);
    bool keyReleased(const QKeyEvent& event);
    void endTyping(const QPointF& place);

    tavi::EditorViewModel* m_editor = nullptr;
    QQuickWindow* m_window = nullptr;
    bool m_leavesArrows = false;
    std::set<int> m_taken; ///< Keys that are down and belong to the editor.
};

} // namespace tavi
