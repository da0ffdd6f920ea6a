import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    take.isRecording: true
    take.elapsedTime: 83.42
}
