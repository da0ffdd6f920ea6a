import QtQuick
import "../fakes"

AppScene {
    implicitWidth: 800
    implicitHeight: 600
    Component.onCompleted: {
        library.fill(12)
        library.selectAll()
    }
}
