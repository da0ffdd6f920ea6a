import QtQuick
import Tavi.Ui

/// A second action: outlined, or without a ground until the pointer is over it.
ButtonBase {
    id: button

    property bool outlined: true
    property bool destructive: false
    /// The colour of the ground under the pointer.
    readonly property color tone: destructive ? AppPalette.danger : AppPalette.white

    foreground: destructive ? AppPalette.danger : AppPalette.primaryText
    leftPadding: outlined ? 12 : 8
    rightPadding: outlined ? 12 : 8
    topPadding: 5
    bottomPadding: 5
    cornerRadius: Theme.radius

    background: Rectangle {
        radius: button.cornerRadius
        color: AppPalette.at(button.tone, button.down ? 0.14 : button.hovered ? 0.08
                                        : button.outlined ? 0.03 : 0)
        border.width: button.outlined ? 1 : 0
        border.color: AppPalette.at(button.tone, button.destructive ? 0.3 : 0.14)
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
