import QtQuick
import Tavi.Ui

/// An action in the accent's colour on a faint ground of it, or in the colour of danger.
ButtonBase {
    id: button

    property color tone: AppPalette.accent
    property real strength: 0.15

    foreground: tone
    textSize: 12
    symbolSize: 11
    textWeight: Font.DemiBold
    leftPadding: 10
    rightPadding: 10
    topPadding: 5
    bottomPadding: 5

    background: Rectangle {
        radius: button.cornerRadius
        color: AppPalette.at(button.tone, button.strength + (button.down ? 0.12 : button.hovered ? 0.07 : 0))
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
