import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// A small panel at a control. Escape and a click elsewhere close it; Tab stays inside.
T.Popup {
    id: popover

    /// For assistive technology.
    required property string name

    focus: true
    modal: false
    padding: 6
    margins: 8
    implicitWidth: implicitContentWidth + leftPadding + rightPadding
    implicitHeight: implicitContentHeight + topPadding + bottomPadding
    closePolicy: T.Popup.CloseOnEscape | T.Popup.CloseOnPressOutsideParent
    background: FloatingPanel {
        Accessible.role: Accessible.Pane
        Accessible.name: popover.name
    }
    enter: Transition {
        NumberAnimation { property: "opacity"; from: 0; to: 1; duration: Theme.hover }
    }
    exit: Transition {
        NumberAnimation { property: "opacity"; from: 1; to: 0; duration: 100 }
    }
}
