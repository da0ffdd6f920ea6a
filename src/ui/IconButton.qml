import QtQuick
import Tavi.Ui

/// A symbol in a box of its own; `hint` is its name and its tip.
ButtonBase {
    id: button

    property real boxWidth: 28
    property real boxHeight: boxWidth

    foreground: hovered || down ? AppPalette.primaryText : AppPalette.secondaryText
    implicitWidth: boxWidth
    implicitHeight: boxHeight

    background: Rectangle {
        radius: button.cornerRadius
        color: AppPalette.at(AppPalette.white, button.down ? 0.12 : button.hovered ? 0.07 : 0)
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
