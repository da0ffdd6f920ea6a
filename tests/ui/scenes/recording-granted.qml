import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    fake.inputMonitoring.isGranted: true
    Component.onCompleted: take.fill(1, 0, 0)
}
