import QtQuick
import Tavi.Ui

/// What the pointer does on the timeline.
MouseArea {
    id: area

    required property QtObject timeline
    required property real padding
    required property real lanesTop
    required property real upperHeight
    readonly property bool isOnLane: mouseY >= lanesTop

    function laneAt(y: real): int {
        return y < lanesTop + upperHeight ? 0 : 1
    }
    function laneTop(lane: int): real {
        return lane === 0 ? lanesTop : lanesTop + upperHeight
    }
    function showPointer(mouse: MouseEvent) {
        const lane = laneAt(mouse.y)
        const shape = mouse.y < lanesTop ? 0
                    : timeline.pointerAt(lane, mouse.x - padding, mouse.y - laneTop(lane))
        cursorShape = shape === 1 ? Qt.SizeHorCursor : shape === 2 ? Qt.OpenHandCursor : Qt.ArrowCursor
    }
    function openMenu(mouse: MouseEvent) {
        if (mouse.y < lanesTop)
            return
        const lane = laneAt(mouse.y)
        const subject = timeline.openMenu(lane, mouse.x - padding, mouse.y - laneTop(lane))
        if (subject === "cut")
            cutMenu.popup(mouse.x, mouse.y)
        else if (subject === "curvePoint")
            pointMenu.popup(mouse.x, mouse.y)
    }

    property int lane: 0

    hoverEnabled: true
    preventStealing: true
    acceptedButtons: Qt.LeftButton | Qt.RightButton

    onPressed: mouse => {
        if (mouse.button === Qt.RightButton) {
            if (!(mouse.buttons & Qt.LeftButton)) // else something is being dragged
                openMenu(mouse)
        } else if (mouse.y >= lanesTop) {
            lane = laneAt(mouse.y)
            timeline.press(lane, mouse.x - padding, mouse.y - laneTop(lane))
        }
    }
    onPositionChanged: mouse => {
        if (pressedButtons & Qt.LeftButton)
            timeline.move(mouse.x - padding, mouse.y - laneTop(lane))
        else
            showPointer(mouse)
    }
    onReleased: mouse => {
        if (mouse.button !== Qt.LeftButton)
            return
        timeline.release(mouse.x - padding, mouse.y - laneTop(lane))
        showPointer(mouse)
    }
    onCanceled: timeline.cancel()

    ContextMenu {
        id: cutMenu
        name: qsTr("Cut")

        MenuRow {
            symbol: "arrow.uturn.backward"
            destructive: true
            text: qsTr("Restore Section")
            onTriggered: area.timeline.restoreSection()
        }
    }
    ContextMenu {
        id: pointMenu
        name: qsTr("Point")

        MenuRow {
            symbol: "trash"
            destructive: true
            text: qsTr("Delete Point")
            onTriggered: area.timeline.deletePoint()
        }
    }
}
