import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "editing"
    app.notice: "The recording ended because the disk is full. What was recorded until then is saved."
}
