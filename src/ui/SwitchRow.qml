import QtQuick
import Tavi.Ui

/// A label at the left, a switch at the right.
Item {
    id: row

    required property string label
    property alias checked: control.checked
    signal toggled(bool checked)

    implicitWidth: 200
    implicitHeight: 22

    TextLabel {
        anchors.verticalCenter: parent.verticalCenter
        text: row.label
        Accessible.ignored: true
        size: 11
        color: AppPalette.secondaryText
    }
    ToggleSwitch {
        id: control
        anchors.right: parent.right
        anchors.verticalCenter: parent.verticalCenter
        name: row.label
        onToggled: row.toggled(checked)
    }
}
