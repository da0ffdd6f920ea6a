import QtQuick
import "../fakes"

AppScene {
    Component.onCompleted: {
        library.fill(6)
        app.showSettings = true
    }
}
