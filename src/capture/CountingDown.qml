import QtQuick
import Tavi.Ui

/// The seconds left, and the way out.
FocusScope {
    id: body

    required property QtObject viewModel

    Column {
        anchors.centerIn: parent
        spacing: 10

        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: body.viewModel.isAsking ? qsTr("Choose in the desktop's dialog")
                                          : qsTr("Starting in %1").arg(body.viewModel.countdownValue)
            size: 28
            weight: Font.Medium
            tabular: true
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: qsTr("Get ready")
            size: 12
            color: AppPalette.secondaryText
        }
        Item {
            width: 1
            height: 6
        }
        PlainButton {
            anchors.horizontalCenter: parent.horizontalCenter
            focus: true
            leftPadding: 20
            rightPadding: 20
            text: qsTr("Cancel")
            onClicked: body.viewModel.cancelCountdown()
        }
    }
}
