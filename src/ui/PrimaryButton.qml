import QtQuick
import Tavi.Ui

/// The one action of a screen: dark text on the accent, or on the colour of
/// danger when it destroys.
ButtonBase {
    id: button

    property bool destructive: false
    readonly property color tone: destructive ? AppPalette.danger : AppPalette.accent

    foreground: !enabled ? AppPalette.secondaryText : destructive ? AppPalette.white : AppPalette.background
    textWeight: Font.DemiBold
    leftPadding: 12
    rightPadding: 12
    topPadding: 5
    bottomPadding: 5
    cornerRadius: Theme.radius

    background: Rectangle {
        radius: button.cornerRadius
        color: !button.enabled ? AppPalette.at(AppPalette.white, 0.08)
             : button.down ? Qt.darker(button.tone, 1.18)
             : button.hovered ? Qt.lighter(button.tone, 1.08) : button.tone
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
