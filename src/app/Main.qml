import QtQuick
import QtQuick.Window
import Tavi.Ui

/// The window of the program.
Window {
    id: window

    required property QtObject taviApp

    width: 1120
    height: 720
    minimumWidth: 800
    minimumHeight: 600
    visible: true
    title: "Tavlin"
    color: AppPalette.background

    Shortcut {
        sequence: "Ctrl+,"
        onActivated: window.taviApp.appViewModel.showSettings = true
    }
    Shortcut {
        sequences: [StandardKey.Quit]
        onActivated: Qt.quit()
    }
    ContentView {
        anchors.fill: parent
        focus: true
        taviApp: window.taviApp
    }
}
