import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    Component.onCompleted: take.fill(2, 6, 2)
}
