import QtQuick
import Tavi.Ui

/// Whether keys can be captured, while that is news.
Row {
    id: row

    required property QtObject inputMonitoring
    required property bool showPermissionGranted

    visible: !inputMonitoring.isGranted || showPermissionGranted
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
