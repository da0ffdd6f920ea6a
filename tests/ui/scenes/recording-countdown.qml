import QtQuick
import "../fakes"

AppScene {
    app.currentMode: "recording"
    take.isCountingDown: true
    take.countdownValue: 3
}
