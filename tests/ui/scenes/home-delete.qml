import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: library.fill(6)
    onShown: screen.dialogs.askToDelete(library.recordings[1])
}
