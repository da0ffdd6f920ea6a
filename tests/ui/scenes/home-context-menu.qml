import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: library.fill(6)
    onShown: screen.menu.openFor(library.recordings[1], screen.grid.itemAtIndex(1), 120, 90)
}
