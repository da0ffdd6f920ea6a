import QtQuick
import Tavi.Ui

/// An export at work.
Column {
    id: view

    required property QtObject screen

    spacing: 8

    Item {
        width: parent.width
        height: 18

        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Exporting")
            weight: Font.Medium
        }
        TextLabel {
            anchors.right: parent.right
            anchors.verticalCenter: parent.verticalCenter
            text: view.screen.exportPercentText
            size: 12
            tabular: true
            color: AppPalette.secondaryText
        }
    }
    ProgressLine {
        width: parent.width
        name: qsTr("Exporting")
        value: view.screen.exportProgress
    }
    Item {
        width: parent.width
        height: cancel.height

        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: view.screen.exportRemainingText
            size: 11
            tabular: true
            color: AppPalette.secondaryText
        }
        PlainButton {
            id: cancel
            anchors.right: parent.right
            text: qsTr("Cancel")
            textSize: 12
            onClicked: view.screen.cancelExport()
        }
    }
}
