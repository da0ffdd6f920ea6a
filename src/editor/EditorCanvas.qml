import QtQuick
import QtQuick.Window
import Tavi.Ui

/// The live picture, in the middle of its room.
Item {
    id: view

    required property QtObject canvas

    Binding {
        target: view.canvas
        property: "size"
        value: Qt.size(view.width, view.height)
    }
    Binding {
        target: view.canvas
        property: "pixelRatio"
        value: Screen.devicePixelRatio
    }
    Timer {
        interval: 33
        repeat: true
        running: view.canvas.isAnimated && view.visible
        onTriggered: view.canvas.tick()
    }
    Picture {
        x: view.canvas.frame.x
        y: view.canvas.frame.y
        width: view.canvas.frame.width
        height: view.canvas.frame.height
        holder: view.canvas
        stretched: true
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Canvas")
    }
    MouseArea {
        x: view.canvas.content.x
        y: view.canvas.content.y
        width: view.canvas.content.width
        height: view.canvas.content.height
        cursorShape: Qt.CrossCursor
        onClicked: mouse => view.canvas.tap(x + mouse.x - view.canvas.frame.x,
                                            y + mouse.y - view.canvas.frame.y)
    }
}
