import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: library.fill(6)
    onShown: screen.dialogs.askForName(library.recordings[1])
}
