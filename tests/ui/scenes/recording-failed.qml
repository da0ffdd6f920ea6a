import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    Component.onCompleted: {
        take.fill(1, 3, 1)
        take.failureText = "The recording ended because the disk is full. What was recorded until then is saved."
    }
}
