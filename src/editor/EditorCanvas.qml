import QtQuick
import QtQuick.Window
import Tavi.Ui

/// The live picture, in the middle of its room.
Item {
    id: view

    required property QtObject canvas
    /// The arrow keys and Escape are the canvas' own.
    readonly property bool isPointing: canvas.crosshair.isPointing

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
        id: picture

        readonly property QtObject crosshair: view.canvas.crosshair
        readonly property point origin: Qt.point(view.canvas.content.x - x, view.canvas.content.y - y)

        function moveBy(event: KeyEvent, right: int, down: int) {
            event.accepted = crosshair.isPointing
            crosshair.move(right, down, event.modifiers & Qt.ShiftModifier)
        }

        x: view.canvas.frame.x
        y: view.canvas.frame.y
        width: view.canvas.frame.width
        height: view.canvas.frame.height
        holder: view.canvas
        stretched: true
        activeFocusOnTab: true
        onActiveFocusChanged: crosshair.end()
        Accessible.role: Accessible.Graphic
        Accessible.name: qsTr("Canvas")
        Accessible.description: crosshair.hint
        Accessible.focusable: true
        Accessible.focused: activeFocus
        Accessible.onPressAction: crosshair.press()

        Keys.onReturnPressed: crosshair.press()
        Keys.onEnterPressed: crosshair.press()
        Keys.onLeftPressed: event => moveBy(event, -1, 0)
        Keys.onRightPressed: event => moveBy(event, 1, 0)
        Keys.onUpPressed: event => moveBy(event, 0, -1)
        Keys.onDownPressed: event => moveBy(event, 0, 1)
        Keys.onEscapePressed: crosshair.end()

        FocusRing {
            shown: picture.activeFocus
            cornerRadius: 0
        }
        FocusHint {
            target: picture
            text: picture.crosshair.hint
        }
        CanvasCrosshair {
            visible: view.isPointing
            x: Math.round(picture.origin.x + picture.crosshair.place.x * view.canvas.content.width)
            y: Math.round(picture.origin.y + picture.crosshair.place.y * view.canvas.content.height)
        }
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
