import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    take.captureMode: "Window"
    fake.inputMonitoring.isGranted: true
    Component.onCompleted: take.fillFromPortal()
}
