import QtQuick
import Tavi.Ui

/// The take that runs, and its end.
FocusScope {
    id: body

    required property QtObject viewModel

    function two(number: int): string {
        return String(number).padStart(2, "0")
    }
    function clock(seconds: real): string {
        const whole = Math.floor(seconds)
        return two(Math.floor(whole / 60)) + ":" + two(whole % 60) + "." + Math.floor((seconds - whole) * 10)
    }

    Column {
        anchors.centerIn: parent
        spacing: 10

        Row {
            anchors.horizontalCenter: parent.horizontalCenter
            spacing: 8

            Rectangle {
                anchors.verticalCenter: parent.verticalCenter
                width: 10
                height: 10
                radius: 5
                color: AppPalette.danger
                opacity: 1 - 0.7 * pulseOpacity.value

                Pulse {
                    id: pulseOpacity
                    seconds: 0.8
                    running: body.viewModel.isRecording && body.visible && !Theme.still
                             && body.Window.visibility !== Window.Minimized
                }
            }
            TextLabel {
                anchors.verticalCenter: parent.verticalCenter
                text: qsTr("Recording")
                size: 12
                color: AppPalette.secondaryText
            }
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            text: body.clock(body.viewModel.elapsedTime)
            size: 40
            weight: Font.Medium
            tabular: true
        }
        TextLabel {
            anchors.horizontalCenter: parent.horizontalCenter
            width: Math.min(implicitWidth, body.width - 2 * Theme.margin)
            visible: text !== ""
            text: body.viewModel.interruptionText
            size: 12
            color: AppPalette.danger
            wrapMode: Text.Wrap
            horizontalAlignment: Text.AlignHCenter
        }
        Item {
            width: 1
            height: 6
        }
        PrimaryButton {
            anchors.horizontalCenter: parent.horizontalCenter
            destructive: true
            focus: true
            enabled: body.viewModel.isRecording && !body.viewModel.isStopping
            leftPadding: 20
            rightPadding: 20
            topPadding: 8
            bottomPadding: 8
            text: qsTr("Stop Recording")
            onClicked: body.viewModel.stop()
        }
    }
}
