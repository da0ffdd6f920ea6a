import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: {
        library.fill(6)
        library.selectedItems = ["take-0", "take-1", "take-4"]
    }
    onShown: screen.dialogs.askToDeleteSelection()
}
