import QtQuick
import "../fakes"

EditorScene {
    selectedTab: 1
    Component.onCompleted: {
        testEditor.select(2)
        testEditor.moveTo(22)
    }
}
