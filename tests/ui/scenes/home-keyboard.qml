import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: library.fill(6)
    onShown: {
        screen.grid.currentIndex = 2
        screen.grid.keyboardUsed = true
    }
}
