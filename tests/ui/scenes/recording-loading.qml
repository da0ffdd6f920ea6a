import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
}
