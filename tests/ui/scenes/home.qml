import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: library.fill(9)
}
