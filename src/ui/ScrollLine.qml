import QtQuick
import QtQuick.Templates as T
import Tavi.Ui

/// A scroll bar that is there while it is needed.
T.ScrollBar {
    id: bar

    implicitWidth: 10
    implicitHeight: 10
    padding: 2
    minimumSize: 0.06
    policy: size < 1 ? T.ScrollBar.AlwaysOn : T.ScrollBar.AlwaysOff
    visible: policy === T.ScrollBar.AlwaysOn
    Accessible.role: Accessible.ScrollBar
    Accessible.name: qsTr("Scroll")

    contentItem: Rectangle {
        radius: 3
        color: AppPalette.at(AppPalette.white, bar.pressed ? 0.4 : bar.hovered ? 0.3 : bar.active ? 0.22 : 0.12)
        Behavior on color { ColorAnimation { duration: Theme.hover } }
    }
}
