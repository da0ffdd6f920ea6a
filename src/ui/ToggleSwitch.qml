import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// On or off.
T.Switch {
    id: control

    required property string name

    implicitWidth: 32
    implicitHeight: 18
    focusPolicy: Qt.TabFocus
    hoverEnabled: true

    Accessible.role: Accessible.CheckBox
    Accessible.name: name

    Keys.onReturnPressed: press()
    Keys.onEnterPressed: press()

    function press() {
        toggle()
        toggled()
    }

    Spring {
        id: place
        to: control.checked ? 1 : 0
        response: 0.25
        damping: 0.8
    }
    indicator: Rectangle {
        width: control.width
        height: control.height
        radius: height / 2
        color: control.checked ? AppPalette.accent
                               : AppPalette.at(AppPalette.white, control.hovered ? 0.2 : 0.15)
        Behavior on color { ColorAnimation { duration: Theme.hover } }

        Rectangle {
            x: 2 + place.value * (parent.width - width - 4)
            y: 2
            width: 14
            height: 14
            radius: 7
            color: AppPalette.white
        }
        FocusRing {
            shown: control.visualFocus
            cornerRadius: 9
        }
    }
    HoverHandler {
        cursorShape: Qt.PointingHandCursor
    }
}
