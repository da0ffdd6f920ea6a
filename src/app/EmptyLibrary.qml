import QtQuick
import Tavi.Ui

/// The library without recordings.
FocusScope {
    id: view

    signal newRecordingAsked

    implicitWidth: column.implicitWidth
    implicitHeight: column.implicitHeight

    Column {
        id: column
        anchors.centerIn: parent
        spacing: 8

        Icon {
            anchors.horizontalCenter: parent.horizontalCenter
            name: "film.stack"
            size: 36
            color: AppPalette.secondaryText
            opacity: 0.5
        }
        Item {
            width: 1
            height: 2
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("No Recordings")
            size: 15
            weight: Font.Medium
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("Start a new recording to get going.")
            color: AppPalette.secondaryText
        }
        Item {
            width: 1
            height: 6
        }
        NewRecordingButton {
            anchors.horizontalCenter: parent.horizontalCenter
            focus: true
            onClicked: view.newRecordingAsked()
        }
    }
}
