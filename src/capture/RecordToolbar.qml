import QtQuick
import Tavi.Ui

/// The devices and the button that starts.
Row {
    id: bar

    required property QtObject viewModel

    spacing: 10

    DeviceControl {
        on: bar.viewModel.isAudioEnabled
        onSymbol: "mic.fill"
        offSymbol: "mic.slash.fill"
        hint: on ? qsTr("Mute microphone") : qsTr("Unmute microphone")
        heading: qsTr("Microphone")
        headingSymbol: "mic.fill"
        devices: bar.viewModel.availableMicrophones
        selectedIndex: bar.viewModel.selectedMicrophoneIndex
        onToggled: bar.viewModel.isAudioEnabled = !bar.viewModel.isAudioEnabled
        onPicked: index => bar.viewModel.selectedMicrophoneIndex = index
    }
    DeviceControl {
        visible: bar.viewModel.isCameraAvailable
        on: bar.viewModel.isCameraEnabled
        onSymbol: "video.fill"
        offSymbol: "video.slash.fill"
        hint: on ? qsTr("Turn off camera") : qsTr("Turn on camera")
        heading: qsTr("Camera")
        headingSymbol: "camera.fill"
        devices: bar.viewModel.availableCameras
        selectedIndex: bar.viewModel.selectedCameraIndex
        onToggled: bar.viewModel.isCameraEnabled = !bar.viewModel.isCameraEnabled
        onPicked: index => bar.viewModel.selectedCameraIndex = index
    }
    ButtonBase {
        id: record
        height: 44
        leftPadding: 20
        rightPadding: 22
        cornerRadius: Theme.largeRadius
        text: qsTr("Record")
        onClicked: bar.viewModel.record()

        contentItem: Item {
            implicitWidth: row.implicitWidth

            Row {
                id: row
                anchors.centerIn: parent
                spacing: 9

                Rectangle {
                    anchors.verticalCenter: parent.verticalCenter
                    width: 10
                    height: 10
                    radius: 5
                    color: AppPalette.danger
                }
                TextLabel {
                    anchors.verticalCenter: parent.verticalCenter
                    text: record.text
                    weight: Font.DemiBold
                }
            }
        }
        background: Rectangle {
            radius: record.cornerRadius
            color: AppPalette.at(AppPalette.white, record.down ? 0.16 : record.hovered ? 0.12 : 0.08)
            border.color: AppPalette.at(AppPalette.white, 0.12)
            Behavior on color { ColorAnimation { duration: Theme.hover } }
        }
    }
}
