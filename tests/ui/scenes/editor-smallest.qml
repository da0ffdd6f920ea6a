import QtQuick
import "../fakes"

EditorScene {
    implicitWidth: 800
    implicitHeight: 600
    Component.onCompleted: screen.editor.toggleCut()
}
