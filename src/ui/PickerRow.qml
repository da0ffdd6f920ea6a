import QtQuick
import Tavi.Ui

/// One line of a picker: a tick at the chosen one, the name.
ButtonBase {
    id: row

    required property bool chosen

    implicitWidth: 220
    implicitHeight: 28

    markable: true
    marked: chosen
    Accessible.role: Accessible.RadioButton

    contentItem: Item {
        Icon {
            x: 8
            anchors.verticalCenter: parent.verticalCenter
            visible: row.chosen
            name: "checkmark"
            size: 9
            color: AppPalette.accent
        }
        TextLabel {
            x: 26
            width: parent.width - x - 8
            anchors.verticalCenter: parent.verticalCenter
            text: row.text
            size: 12
            userText: true
        }
    }
    background: Rectangle {
        radius: row.cornerRadius
        color: AppPalette.at(AppPalette.white, row.down ? 0.12 : row.hovered || row.visualFocus ? 0.07 : 0)
    }
}
