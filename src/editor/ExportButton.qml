import QtQuick
import Tavi.Ui

/// Begins the export: dark text on the colour of text.
ButtonBase {
    id: button

    symbol: "square.and.arrow.up"
    symbolSize: 11
    textSize: 12
    textWeight: Font.DemiBold
    foreground: AppPalette.background
    leftPadding: 10
    rightPadding: 10
    topPadding: 5
    bottomPadding: 5

    background: Rectangle {
        radius: button.cornerRadius
        color: button.down ? Qt.darker(AppPalette.primaryText, 1.15)
             : button.hovered ? AppPalette.white : AppPalette.primaryText
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
