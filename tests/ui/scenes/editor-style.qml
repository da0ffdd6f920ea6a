import QtQuick
import "../fakes"

/// Every control of the look, of a take with a camera.
EditorScene {
    implicitHeight: 1420
    screen: {
        testEditor.recordCamera()
        return testEditor.screen
    }
    Component.onCompleted: testEditor.moveTo(12)
}
