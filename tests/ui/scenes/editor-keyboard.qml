import QtQuick
import "../fakes"

/// The keyboard stands on a point of the selected keyframe's curve.
EditorScene {
    id: scene

    selectedTab: 1
    function goToPoint() {
        let item = scene
        for (let i = 0; i < 100 && !item.name?.startsWith("Zoom of"); ++i)
            item = item.nextItemInFocusChain()
        item.forceActiveFocus(Qt.TabFocusReason)
    }

    Component.onCompleted: {
        testEditor.select(2)
        Qt.callLater(goToPoint)
    }
}
