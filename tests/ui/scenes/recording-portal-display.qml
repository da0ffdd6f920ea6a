import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    take.pointerWarning: "This desktop doesn't tell where the pointer is: the film will show no pointer, and nothing to zoom to can be found."
    fake.inputMonitoring.accessCommand: "sudo usermod -aG input \"$USER\""
    Component.onCompleted: take.fillFromPortal()
}
