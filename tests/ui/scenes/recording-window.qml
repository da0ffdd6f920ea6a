import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    take.captureMode: "Window"
    take.selectedWindowIndex: 1
    Component.onCompleted: {
        take.fill(1, 6, 2)
        take.isAudioEnabled = false
    }
}
