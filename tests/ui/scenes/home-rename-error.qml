import QtQuick
import "../fakes"

AppScene {
    library.problem: "Name cannot contain \"/\" or \":\" characters."
    Component.onCompleted: library.fill(6)
    onShown: screen.dialogs.tell(library.problem)
}
