import QtQuick
import "../fakes"

EditorScene {
    selectedTab: 2
    Component.onCompleted: {
        testEditor.setLook("wallpaper", 0.1)
        testEditor.moveTo(14.5)
        screen.editor.toggleCut()
        testEditor.moveTo(17.25)
    }
}
