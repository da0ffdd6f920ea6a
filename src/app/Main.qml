import QtQuick
import QtQuick.Window
import Tavi.Ui

/// The window of the program.
Window {
    id: window

    required property QtObject taviApp
    /// The user knows what is lost with the window.
    property bool isAgreed: false

    onClosing: close => {
        if (!content.isBusy || isAgreed)
            return
        close.accepted = false
        content.leave(() => {
            window.isAgreed = true
            window.close()
        })
    }

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
        onActivated: content.leave(Qt.quit)
    }
    ContentView {
        id: content
        anchors.fill: parent
        focus: true
        taviApp: window.taviApp
    }
}
