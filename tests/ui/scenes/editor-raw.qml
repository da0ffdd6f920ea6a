import QtQuick
import "../fakes"

EditorScene {
    selectedTab: 2
    Component.onCompleted: {
        screen.canvasMode = 0
        screen.exportSettings.chooseResolution(3)
        screen.exportSettings.chooseFrameRate(2)
        testEditor.setLook("solidWhite", 0.05)
        testEditor.moveTo(24)
    }
}
