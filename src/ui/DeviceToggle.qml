import QtQuick
import Tavi.Ui

/// A device that is on, or red and off.
ButtonBase {
    id: button

    required property bool on

    implicitWidth: 44
    implicitHeight: 44
    symbolSize: 15
    cornerRadius: Theme.largeRadius
    foreground: on ? AppPalette.primaryText : AppPalette.danger

    markable: true
    marked: on
    Accessible.role: Accessible.CheckBox

    background: Rectangle {
        radius: button.cornerRadius
        color: button.on ? AppPalette.at(AppPalette.white, button.down ? 0.14 : button.hovered ? 0.1 : 0.06)
                         : AppPalette.at(AppPalette.danger, button.down ? 0.28 : button.hovered ? 0.22 : 0.15)
        border.color: button.on ? AppPalette.at(AppPalette.white, 0.08)
                                : AppPalette.at(AppPalette.danger, 0.3)
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
