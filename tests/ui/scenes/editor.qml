import QtQuick
import "../fakes"

EditorScene {
    Component.onCompleted: testEditor.moveTo(12)
}
