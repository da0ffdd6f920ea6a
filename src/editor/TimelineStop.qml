import QtQuick
import Tavi.Ui

/// A thing on the timeline, for the keyboard and assistive technology. It shows nothing but the
/// focus, and the pointer goes through it.
Item {
    id: stop

    required property QtObject stops
    required property int index
    required property string name
    required property string hint
    required property int lane
    required property rect place
    property real trackLeft: 0
    property var laneTops: []

    function activate() {
        stops.activate(index)
    }
    /// The focus goes on before the row is gone.
    function remove() {
        const next = nextItemInFocusChain(index + 1 < stops.rowCount())
        next.forceActiveFocus(Qt.TabFocusReason)
        stops.remove(index)
    }

    x: trackLeft + place.x
    y: laneTops[lane] + place.y
    width: place.width
    height: place.height
    activeFocusOnTab: true

    Accessible.role: Accessible.Button
    Accessible.name: name
    Accessible.description: hint
    Accessible.focusable: true
    Accessible.focused: activeFocus
    Accessible.onPressAction: activate()

    Keys.onReturnPressed: activate()
    Keys.onEnterPressed: activate()
    Keys.onUpPressed: stops.nudge(index, 1)
    Keys.onDownPressed: stops.nudge(index, -1)
    Keys.onDeletePressed: remove()
    Keys.onPressed: event => {
        if (event.key === Qt.Key_Backspace) {
            event.accepted = true
            remove()
        }
    }

    FocusRing {
        shown: stop.activeFocus
        cornerRadius: 3
        border.color: AppPalette.white // what it stands around is of the accent's colour
    }
    FocusHint {
        target: stop
        text: stop.hint
    }
}
