import QtQuick
import "../fakes"

/// The keyboard points the selected keyframe's zoom at a place of the canvas.
EditorScene {
    id: scene

    selectedTab: 1
    function point() {
        let item = scene
        for (let i = 0; i < 100 && !item.crosshair; ++i)
            item = item.nextItemInFocusChain()
        item.forceActiveFocus(Qt.TabFocusReason)
        item.crosshair.press()
        item.crosshair.move(1, -2, true)
    }

    Component.onCompleted: {
        testEditor.select(2)
        Qt.callLater(point)
    }
}
