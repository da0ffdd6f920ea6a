import QtQuick
import Tavi.Ui

/// One of several choices.
ButtonBase {
    id: button

    required property bool chosen

    textSize: 11
    symbolSize: 11
    leftPadding: 10
    rightPadding: 10
    topPadding: 4
    bottomPadding: 4
    foreground: chosen ? AppPalette.accent
              : hovered ? AppPalette.primaryText : AppPalette.secondaryText

    markable: true
    marked: chosen
    Accessible.role: Accessible.RadioButton

    background: Rectangle {
        radius: button.cornerRadius
        color: button.chosen ? AppPalette.at(AppPalette.accent, 0.12)
                             : AppPalette.at(AppPalette.white, button.down ? 0.1 : button.hovered ? 0.07 : 0.04)
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
