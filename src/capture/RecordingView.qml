import QtQuick
import Tavi.Ui

/// Picks a source and devices, starts the countdown and shows the running take.
FocusScope {
    id: view

    required property QtObject appViewModel
    required property QtObject settingsManager
    required property QtObject viewModel
    required property QtObject inputMonitoring

    property bool showPermissionGranted: false
    readonly property string body: viewModel.isRecording || viewModel.isStarting ? "recording"
                                 : viewModel.isCountingDown ? "countingDown" : "selection"

    Component.onCompleted: {
        viewModel.isCameraEnabled = settingsManager.defaultCameraEnabled
        viewModel.isAudioEnabled = settingsManager.defaultAudioEnabled
        inputMonitoring.startProbe()
        viewModel.load()
    }
    Component.onDestruction: inputMonitoring.stopProbe()

    function leave() {
        viewModel.cancelCountdown()
        appViewModel.leaveRecording()
    }

    Connections {
        target: view.viewModel

        function onIsAudioEnabledChanged() {
            view.viewModel.restartAudioWarmUp()
        }
        function onSelectedMicrophoneIndexChanged() {
            view.viewModel.restartAudioWarmUp()
        }
    }
    Connections {
        target: view.inputMonitoring

        function onIsGrantedChanged() {
            view.showPermissionGranted = view.inputMonitoring.isGranted
            granted.restart()
        }
    }
    Timer {
        id: granted
        interval: 2500
        onTriggered: view.showPermissionGranted = false
    }

    Keys.onEscapePressed: event => {
        if (viewModel.isCountingDown)
            viewModel.cancelCountdown()
        else
            event.accepted = false
    }

    Rectangle {
        anchors.fill: parent
        color: AppPalette.background
    }
    HeaderBar {
        id: header
        width: parent.width
        z: 1

        BackButton {
            anchors.verticalCenter: parent.verticalCenter
            anchors.left: parent.left
            anchors.leftMargin: -8
            text: qsTr("Library")
            onClicked: view.leave()
        }
        TextLabel {
            anchors.centerIn: parent
            text: qsTr("Recording")
            weight: Font.DemiBold
            Accessible.role: Accessible.Heading
            Accessible.name: text
        }
        IconButton {
            anchors.right: parent.right
            anchors.rightMargin: -6 // the symbol, not its box, stands at the margin
            anchors.verticalCenter: parent.verticalCenter
            symbol: "gearshape"
            hint: qsTr("Settings")
            onClicked: view.appViewModel.showSettings = true
        }
    }
    Loader {
        anchors.top: header.bottom
        anchors.left: parent.left
        anchors.right: parent.right
        anchors.bottom: parent.bottom
        focus: true
        sourceComponent: view.body === "recording" ? recording
                       : view.body === "countingDown" ? countingDown : selection
        onLoaded: item.forceActiveFocus(Qt.OtherFocusReason)
    }

    Component {
        id: selection
        SourceSelection {
            viewModel: view.viewModel
            inputMonitoring: view.inputMonitoring
            showPermissionGranted: view.showPermissionGranted
        }
    }
    Component {
        id: countingDown
        CountingDown {
            viewModel: view.viewModel
        }
    }
    Component {
        id: recording
        RunningTake {
            viewModel: view.viewModel
        }
    }
}
