import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: {
        library.fill(9)
        library.selectedItems = ["take-0", "take-2", "take-4"]
    }
}
