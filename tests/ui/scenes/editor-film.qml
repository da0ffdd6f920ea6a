import QtQuick
import "../fakes"

/// Size and rate of the film, both typed.
EditorScene {
    selectedTab: 2
    Component.onCompleted: {
        screen.exportSettings.chooseResolution(3)
        screen.exportSettings.chooseFrameRate(2)
    }
}
