import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// A menu at the pointer, or at a control for the keyboard; fill with MenuRow.
T.Menu {
    id: menu

    /// For assistive technology.
    required property string name

    focus: true
    padding: 5
    margins: 8
    overlap: 1
    implicitWidth: Math.max(180, implicitContentWidth + leftPadding + rightPadding)
    implicitHeight: implicitContentHeight + topPadding + bottomPadding

    delegate: MenuRow {}
    contentItem: ListView {
        implicitWidth: {
            let widest = 0
            for (let i = 0; i < menu.count; ++i)
                widest = Math.max(widest, menu.itemAt(i)?.implicitWidth ?? 0)
            return widest
        }
        implicitHeight: contentHeight
        model: menu.contentModel
        interactive: false
        currentIndex: menu.currentIndex
        Accessible.role: Accessible.PopupMenu
        Accessible.name: menu.name
    }
    background: FloatingPanel {
        cornerRadius: 8
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: 80 }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 80 }
    }
}
