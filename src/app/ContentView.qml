import QtQuick
import Tavi.Capture
import Tavi.Editor
import Tavi.Ui

/// The one window's content: the screen of the mode, and the settings over it.
Rectangle {
    id: view

    /// Everything that lives as long as the process.
    required property QtObject taviApp
    readonly property QtObject appViewModel: taviApp.appViewModel
    /// The screen of the mode.
    readonly property alias screen: screen.item
    readonly property alias settings: settings
    readonly property alias noticeAlert: noticeAlert
    /// Something would be lost if the program ended now.
    readonly property bool isBusy: screen.item?.isExporting ?? false

    /// Calls `go`, or lets the user keep what runs.
    function leave(go: var) {
        isBusy ? screen.item.leave(go) : go()
    }

    color: AppPalette.background

    Loader {
        id: screen
        anchors.fill: parent
        focus: true
        sourceComponent: {
            switch (view.appViewModel.currentMode) {
            case "permission":
                return permission
            case "home":
                return home
            case "recording":
                return view.taviApp.recordingViewModel ? recording : null // none where nothing can be recorded
            case "editing":
                return editing
            default:
                return splash
            }
        }
        onLoaded: item.forceActiveFocus(Qt.OtherFocusReason)
    }

    Component {
        id: splash
        SplashView {}
    }
    Component {
        id: permission
        PermissionView {
            appViewModel: view.appViewModel
        }
    }
    Component {
        id: home
        HomeView {
            appViewModel: view.appViewModel
            homeViewModel: view.taviApp.homeViewModel
            notificationViewModel: view.taviApp.notificationViewModel
            thumbnails: view.taviApp.thumbnails
        }
    }
    Component {
        id: recording
        RecordingView {
            appViewModel: view.appViewModel
            settingsManager: view.taviApp.settingsManager
            viewModel: view.taviApp.recordingViewModel
            inputMonitoring: view.taviApp.inputMonitoring
        }
    }
    Component {
        id: editing
        EditorView {
            appViewModel: view.appViewModel
            screen: view.taviApp.editorScreen
        }
    }

    AlertDialog {
        id: noticeAlert

        readonly property string notice: view.appViewModel.notice
        readonly property bool wanted: notice !== "" && view.Window.window

        title: qsTr("Tavlin")
        confirmText: qsTr("OK")
        onWantedChanged: {
            if (!wanted)
                return
            text = notice // stays readable while the alert goes
            Qt.callLater(open)
        }
        onConfirmed: view.appViewModel.notice = ""
        onCancelled: view.appViewModel.notice = ""
    }
    SettingsOverlay {
        id: settings
        appViewModel: view.appViewModel
        settingsViewModel: view.taviApp.settingsViewModel
    }
}
