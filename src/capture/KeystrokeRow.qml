import QtQuick
import Tavi.Ui

/// Whether keys can be captured, while that is news; and how, where it takes a command.
Column {
    id: row

    required property QtObject inputMonitoring
    required property bool showPermissionGranted

    visible: !inputMonitoring.isGranted || showPermissionGranted
    spacing: 4

    Row {
        anchors.horizontalCenter: parent.horizontalCenter
        spacing: 8

        Icon {
            anchors.verticalCenter: parent.verticalCenter
            name: "keyboard"
            size: 11
            color: row.inputMonitoring.isGranted ? AppPalette.success : AppPalette.secondaryText
        }
        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: row.inputMonitoring.isGranted ? qsTr("Keystroke capture enabled")
                                                : qsTr("Enable Input Monitoring to capture keystrokes")
            size: 11
            color: AppPalette.secondaryText
        }
        PlainButton {
            anchors.verticalCenter: parent.verticalCenter
            visible: !row.inputMonitoring.isGranted
            textSize: 11
            topPadding: 3
            bottomPadding: 3
            text: qsTr("Open Settings")
            onClicked: row.inputMonitoring.openInputMonitoringSettings()
        }
    }
    Column {
        width: row.width
        visible: !row.inputMonitoring.isGranted && row.inputMonitoring.accessCommand !== ""
        topPadding: 4
        spacing: 6

        Sentence {
            text: qsTr("Until then a take has no clicks, no scrolling and no keys. This allows them, once you have logged out and in again:")
        }
        CommandBox {
            anchors.horizontalCenter: parent.horizontalCenter
            room: row.width
            command: row.inputMonitoring.accessCommand
        }
        Sentence {
            text: qsTr("Every program that you run can then read what you type, passwords included.")
        }
    }

    component Sentence: TextLabel {
        width: row.width
        size: 11
        color: AppPalette.secondaryText
        wrapMode: Text.Wrap
        horizontalAlignment: Text.AlignHCenter
    }
}
