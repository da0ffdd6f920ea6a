import QtQuick
import Tavi.Ui

/// Shown while the permission to record the screen is missing.
FocusScope {
    id: view

    required property QtObject appViewModel

    Rectangle {
        anchors.fill: parent
        color: AppPalette.background
    }
    HeaderBar {
        id: header
        width: parent.width

        TextLabel {
            anchors.verticalCenter: parent.verticalCenter
            text: qsTr("Tavlin")
            weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
    }
    Column {
        anchors.centerIn: parent
        anchors.verticalCenterOffset: header.height / 2
        spacing: 20

        Rectangle {
            anchors.horizontalCenter: parent.horizontalCenter
            width: 88
            height: 88
            radius: 20
            color: AppPalette.at(AppPalette.accent, 0.08)

            Icon {
                anchors.centerIn: parent
                name: "record.circle"
                size: 38
                color: AppPalette.accent
            }
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(380, view.width - 2 * Theme.margin)
            text: qsTr("Tavlin needs screen recording access to capture your screen.\nPlease grant permission in System Settings.")
            lineHeight: 17
            lineHeightMode: Text.FixedHeight
            color: AppPalette.secondaryText
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        Column {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 10

            PrimaryButton {
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.max(200, implicitWidth)
                focus: true
                leftPadding: 20
                rightPadding: 20
                topPadding: 8
                bottomPadding: 8
                text: qsTr("Open System Settings")
                onClicked: view.appViewModel.requestPermission()
            }
            PlainButton {
                anchors.horizontalCenter: parent.horizontalCenter
                width: Math.max(200, implicitWidth)
                leftPadding: 16
                rightPadding: 16
                topPadding: 7
                bottomPadding: 7
                textSize: 12
                text: qsTr("Check Again")
                onClicked: view.appViewModel.recheckPermission()
            }
        }
    }
}
